#include "workstation/dicom/ParsedFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcistrmb.h>
#include <dcmtk/dcmdata/dcistrmf.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cstdint>
#include <ctime>

#include "workstation/dicom/Toolkit.h"

namespace workstation {
namespace {

/// Longer values stay on disk until they are asked for.
constexpr Uint32 longestValueToLoad = 16384;
/// How much stack reading may take: the toolkit descends into sequences by recursion, and a small file can nest them
/// ten thousand deep. This allows some hundred levels; real files have fewer than ten.
constexpr std::uintptr_t stackForReading = 1 << 20;
/// How far a compressed data set may unfold.
constexpr offile_off_t longestInflated = offile_off_t{1} << 30;

const OFConditionConst nestedTooDeeply{OFM_dcmdata, 0x7001, OF_error, "its sequences are nested too deeply"};
const OFConditionConst takesTooLong{OFM_dcmdata, 0x7003, OF_error, "reading its structure takes unreasonably long"};
const OFConditionConst inflatesTooFar{OFM_dcmdata, 0x7002, OF_error, "its compressed data set is larger than 1 GB"};

/// How long the structure of one file may take: the toolkit sorts elements in quadratic time, and a small file can hold
/// them in the worst order. The largest real files take less than a second.
constexpr double secondsForReading = 5;

/// Seconds that this thread has worked.
double workedSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

std::uintptr_t stackPosition() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

/// A file's bytes, until reading them has used up the stack, size or time it is allowed.
template <class Stream>
class GuardedStream : public Stream {
 public:
  template <class... Source>
  explicit GuardedStream(std::uintmax_t fileLength, const Source&... source)
      : Stream(source...),
        stackAtStart_(stackPosition()),
        end_(workedSeconds() + secondsForReading),
        longest_(std::max(longestInflated, static_cast<offile_off_t>(fileLength))) {}

  OFBool good() const override { return stopped_.good() && Stream::good(); }
  OFCondition status() const override { return stopped_.good() ? Stream::status() : stopped_; }
  offile_off_t read(void* buffer, offile_off_t length) override {
    const std::uintptr_t now = stackPosition();
    const std::uintptr_t used = now > stackAtStart_ ? now - stackAtStart_ : stackAtStart_ - now;
    if (used > stackForReading) stopped_ = nestedTooDeeply;
    if (this->tell() > longest_) stopped_ = inflatesTooFar;
    if (++reads_ % 1024 == 0 && workedSeconds() > end_) stopped_ = takesTooLong;
    return stopped_.good() ? Stream::read(buffer, length) : 0;
  }

  /// Why reading was stopped, or EC_Normal.
  const OFCondition& stopped() const { return stopped_; }

 private:
  std::uintptr_t stackAtStart_;
  double end_;
  std::uint64_t reads_ = 0;
  offile_off_t longest_;
  OFCondition stopped_ = EC_Normal;
};

std::string phraseFor(const OFCondition& outcome) {
  if (outcome == nestedTooDeeply || outcome == inflatesTooFar || outcome == takesTooLong) return outcome.text();
  if (outcome == EC_StreamNotifyClient || outcome == EC_EndOfStream || outcome == EC_InvalidStream)
    return "it is truncated or damaged: it ends in the middle of an element";
  return std::string("its structure is damaged (") + outcome.text() + ")";
}

}  // namespace

ParsedFile::ParsedFile() : format_(std::make_unique<DcmFileFormat>()) {}
ParsedFile::~ParsedFile() = default;

template <class Stream>
bool ParsedFile::parseStream(Stream& stream, bool headerOnly, std::string& problem) {
  OFCondition outcome = stream.status();
  if (outcome.bad()) {
    problem = std::string("it cannot be opened (") + outcome.text() + ")";
    return false;
  }
  format_->clear();
  format_->transferInit();
  const DcmTagKey end = headerOnly ? DcmTagKey(0x0021, 0) : DCM_UndefinedTagKey;
  outcome = format_->readUntilTag(stream, EXS_Unknown, EGL_noChange, longestValueToLoad, end);
  format_->transferEnd();
  if (stream.stopped().bad()) outcome = stream.stopped();
  if (outcome.good()) return true;
  problem = phraseFor(outcome);
  return false;
}

bool ParsedFile::parse(const std::filesystem::path& file, std::string& problem) {
  return parseFile(file, false, problem);
}

bool ParsedFile::parseHeader(const std::filesystem::path& file, std::string& problem) {
  return parseFile(file, true, problem);
}

bool ParsedFile::parseFile(const std::filesystem::path& file, bool headerOnly, std::string& problem) {
  prepareToolkit();
  std::error_code error;
  const std::uintmax_t fileLength = std::filesystem::file_size(file, error);
  GuardedStream<DcmInputFileStream> stream(error ? 0 : fileLength, OFFilename(file.c_str()));
  return parseStream(stream, headerOnly, problem);
}

bool ParsedFile::parse(const std::vector<std::uint8_t>& bytes, std::string& problem) {
  prepareToolkit();
  GuardedStream<DcmInputBufferStream> stream(bytes.size());
  stream.setBuffer(bytes.data(), static_cast<offile_off_t>(bytes.size()));
  stream.setEos();
  return parseStream(stream, false, problem);
}

DcmDataset& ParsedFile::dataset() { return *format_->getDataset(); }

std::string ParsedFile::mediaStorageSopClass() {
  OFString uid;
  format_->getMetaInfo()->findAndGetOFString(DCM_MediaStorageSOPClassUID, uid);
  return std::string(uid.c_str(), uid.size());
}

}  // namespace workstation
