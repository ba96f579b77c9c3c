#include "cli/Arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "cli/Options.h"

namespace cli {

namespace {

/// A whole number in decimal digits, within bounds.
template <class Number>
Expected<Number> parseWhole(const std::string& text, const std::string& option, Number least, Number most) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stopped == end && number >= least && number <= most) return number;
  return Failure{ExitUsage, option + " takes a whole number from " + std::to_string(least) + " to " +
                                std::to_string(most) + ": '" + text + "' is none."};
}

/// Fills in the number where the option was given.
template <class Number, class Held>
std::optional<Failure> readWhole(const std::optional<std::string>& text, const std::string& option, Held& number,
                                 Number least = std::numeric_limits<Number>::min(),
                                 Number most = std::numeric_limits<Number>::max()) {
  if (!text) return std::nullopt;
  const auto parsed = parseWhole<Number>(*text, option, least, most);
  if (!parsed) return parsed.failure;
  number = *parsed;
  return std::nullopt;
}

Expected<Arguments> phantomArguments(RawArguments& raw) {
  raw.phantom.region = regionsByName.at(raw.phantomRegion);
  if (const auto problem = readWhole<std::uint64_t>(raw.seed, "--seed", raw.phantom.seed)) return *problem;
  if (const auto problem = readWhole<int>(raw.imageSize, "--image-size", raw.phantom.imageSize, 16, 1024)) {
    return *problem;
  }
  return Arguments(raw.phantom);
}

Expected<Arguments> labelArguments(RawArguments& raw) {
  auto& label = raw.label;
  if (!raw.line.empty() && !raw.polygon.empty()) {
    return Failure{ExitUsage, "--line and --polygon cannot be drawn both: give one of them."};
  }
  if (const auto problem = readWhole<int>(raw.series, "--series", label.series)) return *problem;
  if (const auto problem = readWhole<int>(raw.slice, "--slice", label.slice)) return *problem;
  if (raw.line.empty() && raw.polygon.empty()) {
    return Failure{ExitUsage, "label needs --line X0,Y0,X1,Y1 or --polygon X0,Y0,X1,Y1,...: nothing was drawn."};
  }
  label.polygon = !raw.polygon.empty();
  const std::string option = label.polygon ? "--polygon" : "--line";
  auto points = parsePoints(label.polygon ? raw.polygon : raw.line, option);
  if (!points) return points.failure;
  label.points = std::move(*points);
  if (!label.polygon && label.points.size() != 2) {
    return Failure{ExitUsage, "--line needs four numbers, X0,Y0,X1,Y1: " + raw.line + " has " +
                                  std::to_string(label.points.size() * 2) + "."};
  }
  if (!raw.labelRegion.empty()) label.region = regionsByName.at(raw.labelRegion);
  return Arguments(label);
}

Expected<Arguments> showArguments(RawArguments& raw) {
  if (raw.show.studies.empty() && raw.show.database.empty()) {
    return Failure{ExitUsage, "show needs a STUDY, or --database DIR for all studies of a database: none was given."};
  }
  if (const auto problem = readWhole<int>(raw.jobs, "--jobs", raw.show.jobs, 1, mostJobs)) return *problem;
  return Arguments(raw.show);
}

Expected<Arguments> restoreArguments(RawArguments& raw) {
  const auto& object = raw.restore.object;
  if (!object.empty() && object.find_first_not_of("0123456789.") == std::string::npos) return Arguments(raw.restore);
  return Failure{ExitUsage,
                 "--object takes a labelling's number in the history, or its UID: '" + object + "' is neither."};
}

Expected<Arguments> exportArguments(RawArguments& raw) {
  auto& exported = raw.exported;
  exported.format = formatsByName.at(raw.exportFormat);
  const auto& file = exported.outFile;
  // Programs that read NIfTI files know by the name whether they are packed.
  if (exported.format == ExportFormat::sct && !file.ends_with(".nii") && !file.ends_with(".nii.gz")) {
    return Failure{ExitUsage, "--format sct writes a NIfTI file: '" + file + "' must end in .nii or .nii.gz."};
  }
  return Arguments(exported);
}

std::optional<Failure> checkCommandName(const CLI::App& app, int argc, const char* const* argv) {
  const std::string first = argc < 2 ? "" : argv[1];
  if (first == "-h" || first == "--help" || first == "--version") return std::nullopt;
  std::string known;
  for (const auto* command : app.get_subcommands({})) {
    if (command->get_name() == first) return std::nullopt;
    known += (known.empty() ? "" : ", ") + command->get_name();
  }
  std::string problem = argc < 2 ? "No command was given" : "'" + first + "' is no command";
  return Failure{ExitUsage, problem.append("; there are ").append(known).append(" (vertana --help tells the usage)")};
}

/// What the parser complains of, where its own words are not clear.
std::string complaintOf(const CLI::ParseError& error) {
  const std::string text = error.what();
  const auto colon = text.find(": At Most 1 required");
  if (colon != std::string::npos) return text.substr(0, colon) + " was given more than once";
  // Only options without a value are converted by the parser.
  if (error.get_name() == "ConversionError") return text.substr(text.find("--")) + ": this option takes no value";
  return text.substr(0, text.find('\n'));
}

/// An empty name is most often a variable of the shell that holds nothing.
std::optional<Failure> checkNoNameIsEmpty(const CLI::App& command) {
  static const std::pair<const char*, const char*> names[] = {{"--out", "a folder or file to write to"},
                                                              {"--database", "a database folder"},
                                                              {"PATH", "a file or folder of DICOM files"},
                                                              {"SCRIPT", "a file with a session script"}};
  for (const auto& [name, meaning] : names) {
    const auto* option = command.get_option_no_throw(name);
    if (!option) continue;
    const auto values = option->results();
    if (std::find(values.begin(), values.end(), "") == values.end()) continue;
    return Failure{ExitUsage, std::string(name) + " is empty: give " + meaning + "."};
  }
  return std::nullopt;
}

std::string withoutBlanksAround(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string regionName(int region) {
  for (const auto& [name, number] : regionsByName) {
    if (number == region) return name;
  }
  return "none";
}

Expected<std::vector<pelmar::PixelPoint>> parsePoints(const std::string& text, const std::string& option) {
  std::vector<double> numbers;
  std::size_t start = 0;
  while (start <= text.size()) {
    const auto comma = std::min(text.find(',', start), text.size());
    const auto word = withoutBlanksAround(text.substr(start, comma - start));
    double number = 0;
    const char* const end = word.data() + word.size();
    const auto [stopped, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stopped != end || !std::isfinite(number)) {
      std::string problem = option;
      problem.append(" takes numbers with commas between them, X0,Y0,X1,Y1: '").append(word);
      return Failure{ExitUsage, problem.append("' is not a number.")};
    }
    numbers.push_back(number);
    start = comma + 1;
  }
  if (numbers.size() % 2 != 0 || numbers.size() < 4) {
    return Failure{ExitUsage, option + " takes pairs of numbers, at least two pairs, X0,Y0,X1,Y1: " +
                                  std::to_string(numbers.size()) + " numbers were given."};
  }
  std::vector<pelmar::PixelPoint> points;
  for (std::size_t i = 0; i < numbers.size(); i += 2) points.push_back({numbers[i], numbers[i + 1]});
  return points;
}

Expected<Arguments> parseArguments(int argc, const char* const* argv) {
  CLI::App app;
  RawArguments raw;
  addCommands(app, raw);
  if (auto problem = checkCommandName(app, argc, argv)) return *problem;
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForVersion&) {
    return Arguments(TextToPrint{app.version() + "\n"});
  } catch (const CLI::CallForHelp&) {
    return Arguments(TextToPrint{app.help()});
  } catch (const CLI::ParseError& error) {
    return Failure{ExitUsage, complaintOf(error) + " (vertana --help tells the usage)"};
  }
  const auto* chosen = app.get_subcommands().front();  // the parser requires one
  if (auto problem = checkNoNameIsEmpty(*chosen)) return *problem;
  const auto& command = chosen->get_name();
  if (command == "demo") return Arguments(raw.demo);
  if (command == "phantom") return phantomArguments(raw);
  if (command == "import") return Arguments(raw.import);
  if (command == "info") return Arguments(raw.info);
  if (command == "label") return labelArguments(raw);
  if (command == "show") return showArguments(raw);
  if (command == "history") return Arguments(raw.history);
  if (command == "restore") return restoreArguments(raw);
  if (command == "render") return Arguments(raw.render);
  if (command == "terms") return Arguments(raw.terms);
  if (command == "export") return exportArguments(raw);
  return Arguments(raw.play);
}

}  // namespace cli
