#include "workstation/dicom/Jpeg2000.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

namespace workstation {
namespace {

/// A place in the codestream, for the decoder's callbacks.
struct Source {
  const std::vector<std::uint8_t>& bytes;
  std::size_t at = 0;
};

OPJ_SIZE_T readBytes(void* buffer, OPJ_SIZE_T count, void* user) {
  auto& source = *static_cast<Source*>(user);
  const std::size_t available = std::min<std::size_t>(count, source.bytes.size() - source.at);
  if (available == 0) return static_cast<OPJ_SIZE_T>(-1);
  std::memcpy(buffer, source.bytes.data() + source.at, available);
  source.at += available;
  return available;
}

OPJ_OFF_T skipBytes(OPJ_OFF_T count, void* user) {
  auto& source = *static_cast<Source*>(user);
  const auto left = static_cast<OPJ_OFF_T>(source.bytes.size() - source.at);
  const OPJ_OFF_T skipped = std::clamp<OPJ_OFF_T>(count, 0, left);
  source.at += static_cast<std::size_t>(skipped);
  return skipped;
}

OPJ_BOOL seekByte(OPJ_OFF_T position, void* user) {
  auto& source = *static_cast<Source*>(user);
  if (position < 0 || static_cast<std::size_t>(position) > source.bytes.size()) return OPJ_FALSE;
  source.at = static_cast<std::size_t>(position);
  return OPJ_TRUE;
}

void keepMessage(const char* message, void* user) {
  auto& kept = *static_cast<std::string*>(user);
  if (kept.empty()) kept = message;
  while (!kept.empty() && kept.back() == '\n') kept.pop_back();
}

// The library's codec and stream are the same type: a deleter type each.
struct CodecDeleter {
  void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
struct StreamDeleter {
  void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
};
struct ImageDeleter {
  void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};

bool isWrapped(const std::vector<std::uint8_t>& bytes) {
  static constexpr std::string_view mark("\0\0\0\x0CjP  ", 8);
  return bytes.size() >= mark.size() && std::memcmp(bytes.data(), mark.data(), mark.size()) == 0;
}

/// Why the header does not describe what is expected, or an empty string.
std::string mismatch(const opj_image_t& image, const Jpeg2000Expectation& expectation) {
  if (image.numcomps != static_cast<OPJ_UINT32>(expectation.samplesPerPixel))
    return "it has " + std::to_string(image.numcomps) + " components";
  for (OPJ_UINT32 i = 0; i < image.numcomps; ++i) {
    const opj_image_comp_t& component = image.comps[i];
    if (component.w != static_cast<OPJ_UINT32>(expectation.columns) ||
        component.h != static_cast<OPJ_UINT32>(expectation.rows))
      return "it is of another size (" + std::to_string(component.w) + " x " + std::to_string(component.h) + ")";
    if (component.prec < 1 || component.prec > 16 || component.prec != image.comps[0].prec)
      return "it has " + std::to_string(component.prec) + " bits a sample";
  }
  return {};
}

void interleave(const opj_image_t& decoded, Jpeg2000Image& image) {
  const std::size_t pixels = std::size_t{decoded.comps[0].w} * decoded.comps[0].h;
  image.bitsPerSample = static_cast<int>(decoded.comps[0].prec);
  image.samples.reserve(pixels * decoded.numcomps);
  for (std::size_t pixel = 0; pixel < pixels; ++pixel)
    for (OPJ_UINT32 i = 0; i < decoded.numcomps; ++i) image.samples.push_back(decoded.comps[i].data[pixel]);
}

}  // namespace

bool decodeJpeg2000(const std::vector<std::uint8_t>& codestream, const Jpeg2000Expectation& expectation,
                    Jpeg2000Image& image, std::string& problem) {
  Source source{codestream};
  std::string message;
  const std::unique_ptr<opj_codec_t, CodecDeleter> codec(
      opj_create_decompress(isWrapped(codestream) ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
  const std::unique_ptr<opj_stream_t, StreamDeleter> stream(opj_stream_default_create(OPJ_TRUE));
  opj_set_error_handler(codec.get(), keepMessage, &message);
  opj_stream_set_read_function(stream.get(), readBytes);
  opj_stream_set_skip_function(stream.get(), skipBytes);
  opj_stream_set_seek_function(stream.get(), seekByte);
  opj_stream_set_user_data(stream.get(), &source, nullptr);
  opj_stream_set_user_data_length(stream.get(), codestream.size());

  opj_dparameters_t parameters;
  opj_set_default_decoder_parameters(&parameters);
  opj_image_t* header = nullptr;
  const auto fails = [&](const std::string& reason) {
    problem = "its JPEG 2000 data cannot be decoded (" + (reason.empty() ? "they are damaged" : reason) + ")";
    return false;
  };
  if (opj_setup_decoder(codec.get(), &parameters) == 0 || opj_decoder_set_strict_mode(codec.get(), OPJ_TRUE) == 0 ||
      opj_read_header(stream.get(), codec.get(), &header) == 0)
    return fails(message);
  const std::unique_ptr<opj_image_t, ImageDeleter> decoded(header);
  const std::string difference = mismatch(*decoded, expectation);
  if (!difference.empty()) return fails(difference);
  if (opj_decode(codec.get(), stream.get(), decoded.get()) == 0) return fails(message);
  for (OPJ_UINT32 i = 0; i < decoded->numcomps; ++i)
    if (decoded->comps[i].data == nullptr) return fails("a component is missing");
  if (!mismatch(*decoded, expectation).empty()) return fails(mismatch(*decoded, expectation));
  interleave(*decoded, image);
  return true;
}

}  // namespace workstation
