#include "cli/Arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <limits>

namespace cli {

namespace {

const std::map<std::string, int> regionsByName{{"cervical", 0}, {"thoracic", 1}, {"lumbar", 2}};

/// What CLI11 fills in before it is checked any further.
struct RawArguments {
  DemoArguments demo;
  PhantomArguments phantom;
  InfoArguments info;
  LabelArguments label;
  std::string phantomRegion;
  std::optional<std::string> seed;
  std::optional<std::string> series;
  std::optional<std::string> slice;
  std::string labelRegion;
  std::string line;
  std::string polygon;
};

std::string checkRegion(const std::string& name) {
  return regionsByName.contains(name) ? "" : "'" + name + "' is no region: give cervical, thoracic or lumbar";
}

CLI::App* addDemo(CLI::App& app, RawArguments& raw) {
  auto* demo = app.add_subcommand("demo", "Label a phantom study and tell what came out");
  demo->add_option("--out", raw.demo.outDir, "New or empty folder (default: a temporary one)")->type_name("DIR");
  demo->footer("Example:\n  vertana demo");
  return demo;
}

CLI::App* addPhantom(CLI::App& app, RawArguments& raw) {
  auto* phantom = app.add_subcommand("phantom", "Write a synthetic spine study with known truth");
  phantom->add_option("--region", raw.phantomRegion, "cervical, thoracic or lumbar")
      ->required()
      ->type_name("REGION")
      ->check(checkRegion);
  phantom->add_option("--out", raw.phantom.outDir, "Folder to write to (new or empty)")->required()->type_name("DIR");
  phantom->add_option("--seed", raw.seed, "Another number, another patient (default 1)")->type_name("N");
  phantom->add_flag("--extra-vertebra", raw.phantom.extraVertebra, "One more vertebra: C8, T13 or L6");
  phantom->add_flag("--angled-axials", raw.phantom.angledAxials, "Also axial blocks tilted to the discs");
  phantom->add_flag("--ct", raw.phantom.ct, "A CT with 512 thin axial slices instead of an MR");
  phantom->footer("Example:\n  vertana phantom --region lumbar --angled-axials --out /tmp/spine");
  return phantom;
}

CLI::App* addInfo(CLI::App& app, RawArguments& raw) {
  auto* info = app.add_subcommand("info", "List a study's series, region and unusable files");
  info->add_option("STUDY", raw.info.study, "Folder of DICOM files")->required()->type_name("");
  info->add_flag("--json", raw.info.json, "Print JSON for programs");
  info->footer("Example:\n  vertana info /tmp/spine");
  return info;
}

CLI::App* addLabel(CLI::App& app, RawArguments& raw) {
  auto* label = app.add_subcommand("label", "Draw along the spine and name every axial slice");
  label->add_option("STUDY", raw.label.study, "Folder of DICOM files")->required()->type_name("");
  label->add_option("--line", raw.line, "Length line, in pixels of the vertical slice")->type_name("X0,Y0,X1,Y1");
  label->add_option("--polygon", raw.polygon, "Open polygon through the discs, in pixels")
      ->type_name("X0,Y0,X1,Y1,...");
  label->add_option("--series", raw.series, "Series Number of the series to draw on")->type_name("N");
  label->add_option("--slice", raw.slice, "Slice to draw on, from 0 (default: the middle one)")->type_name("K");
  label->add_option("--region", raw.labelRegion, "cervical, thoracic or lumbar (default: guessed)")
      ->type_name("REGION")
      ->check(checkRegion);
  label->add_flag("--extra-vertebra", raw.label.extraVertebra, "The region has one more vertebra: C8, T13 or L6");
  label->add_flag("--json", raw.label.json, "Print JSON for programs");
  label->footer("Example:\n  vertana label /tmp/spine --line 197,46,204,274");
  return label;
}

/// A whole number in decimal digits that fits the type.
template <class Number>
Expected<Number> parseWhole(const std::string& text, const std::string& option) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stopped == end) return number;
  return Failure{ExitUsage, option + " takes a whole number from " +
                                std::to_string(std::numeric_limits<Number>::min()) + " to " +
                                std::to_string(std::numeric_limits<Number>::max()) + ": '" + text + "' is none."};
}

/// Fills in the number where the option was given.
template <class Number, class Held>
std::optional<Failure> readWhole(const std::optional<std::string>& text, const std::string& option, Held& number) {
  if (!text) return std::nullopt;
  const auto parsed = parseWhole<Number>(*text, option);
  if (!parsed) return parsed.failure;
  number = *parsed;
  return std::nullopt;
}

Expected<Arguments> phantomArguments(RawArguments& raw) {
  raw.phantom.region = regionsByName.at(raw.phantomRegion);
  if (const auto problem = readWhole<std::uint64_t>(raw.seed, "--seed", raw.phantom.seed)) return *problem;
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

std::optional<Failure> checkCommandName(const CLI::App& app, int argc, const char* const* argv) {
  const std::string first = argc < 2 ? "" : argv[1];
  if (first == "-h" || first == "--help" || first == "--version") return std::nullopt;
  std::string known;
  for (const auto* command : app.get_subcommands({})) {
    if (command->get_name() == first) return std::nullopt;
    known += (known.empty() ? "" : ", ") + command->get_name();
  }
  const std::string problem = argc < 2 ? "No command was given" : "'" + first + "' is no command";
  return Failure{ExitUsage, problem + "; there are " + known + " (vertana --help tells the usage)"};
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
      return Failure{ExitUsage,
                     option + " takes numbers with commas between them, X0,Y0,X1,Y1: '" + word + "' is not a number."};
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
  CLI::App app(
      "Spine labelling for DICOM studies: draw one line along the spine,\nand every axial slice gets its level.",
      "vertana");
  app.set_version_flag("--version", std::string("vertana ") + VERTANA_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 done, 1 the study or drawing does not allow it, 2 wrong usage,\n"
      "3 input unreadable.\n"
      "Example:\n  vertana demo");
  RawArguments raw;
  const auto* demo = addDemo(app, raw);
  const auto* phantom = addPhantom(app, raw);
  const auto* info = addInfo(app, raw);
  const auto* label = addLabel(app, raw);
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
  if (demo->parsed()) return Arguments(raw.demo);
  if (phantom->parsed()) return phantomArguments(raw);
  if (info->parsed()) return Arguments(raw.info);
  if (label->parsed()) return labelArguments(raw);
  return Failure{ExitUsage, "No command was given (vertana --help tells the usage)"};  // the parser requires one
}

}  // namespace cli
