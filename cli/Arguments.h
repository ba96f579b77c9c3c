#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/ExitStatus.h"
#include "cli/play/Play.h"
#include "host/Geometry.h"

namespace cli {

struct DemoArguments {
  std::string outDir;  ///< empty: a folder of its own under the system's temporary folder
};

struct PhantomArguments {
  int region = 2;
  std::string outDir;
  std::uint64_t seed = 1;
  bool extraVertebra = false;
  bool angledAxials = false;
  bool ct = false;
  int imageSize = 0;  ///< rows and columns, 16 to 1024; 0: the usual ones
};

struct ImportArguments {
  std::vector<std::string> paths;
  std::string database;
};

/// A study is a folder of DICOM files, or, with a database folder, a Study Instance UID.
struct InfoArguments {
  std::string study;
  std::string database;
  bool json = false;
};

struct LabelArguments {
  std::string study;
  std::string database;
  bool polygon = false;                    ///< otherwise a line
  std::vector<pelmar::PixelPoint> points;  ///< two of a line, at least two of a polygon
  std::optional<int> series;               ///< Series Number of the vertical series
  std::optional<int> slice;                ///< from 0
  std::optional<int> region;               ///< 0 cervical, 1 thoracic, 2 lumbar
  bool extraVertebra = false;
  bool json = false;
};

struct ShowArguments {
  std::vector<std::string> studies;  ///< none: all of the database
  std::string database;
  std::optional<int> jobs;  ///< processes at most, 1 to mostJobs; absent: one a processor
  bool json = false;
  bool csv = false;
};

struct HistoryArguments {
  std::string study;
  std::string database;
  bool json = false;
};

struct RestoreArguments {
  std::string study;
  std::string database;
  std::string object;  ///< SOP Instance UID, or the number in the history from 1
};

struct RenderArguments {
  std::string study;
  std::string database;
  std::string outDir;
};

constexpr int mostJobs = 256;

/// Lists where nothing is to be forgotten.
struct TermsArguments {
  std::optional<std::string> forget;
  bool forgetAll = false;
  bool json = false;
};

enum class ExportFormat { json, csv, slicer, sct };

struct ExportArguments {
  std::string study;
  std::string database;
  ExportFormat format = ExportFormat::json;
  std::string outFile;
};

/// Help or version was asked for: print the text and be done.
struct TextToPrint {
  std::string text;
};

using Arguments = std::variant<TextToPrint, DemoArguments, PhantomArguments, ImportArguments, InfoArguments,
                               LabelArguments, ShowArguments, HistoryArguments, RestoreArguments, RenderArguments,
                               ExportArguments, PlayArguments, TermsArguments>;

/// Reads the command line; what is wrong with it is a Failure with ExitUsage.
Expected<Arguments> parseArguments(int argc, const char* const* argv);

/// Points written as X0,Y0,X1,Y1,...; a Failure names `option`.
Expected<std::vector<pelmar::PixelPoint>> parsePoints(const std::string& text, const std::string& option);

/// "cervical", "thoracic", "lumbar"; "none" for any other number.
std::string regionName(int region);

}  // namespace cli
