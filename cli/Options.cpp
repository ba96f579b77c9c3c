#include "cli/Options.h"

namespace cli {

const std::map<std::string, int> regionsByName{{"cervical", 0}, {"thoracic", 1}, {"lumbar", 2}};
const std::map<std::string, ExportFormat> formatsByName{{"json", ExportFormat::json},
                                                        {"csv", ExportFormat::csv},
                                                        {"slicer", ExportFormat::slicer},
                                                        {"sct", ExportFormat::sct}};

namespace {

std::string checkRegion(const std::string& name) {
  return regionsByName.contains(name) ? "" : "'" + name + "' is no region: give cervical, thoracic or lumbar";
}

std::string checkFormat(const std::string& name) {
  return formatsByName.contains(name) ? "" : "'" + name + "' is no format: give json, csv, slicer or sct";
}

/// The example of a command. It needs nothing that another one has made, so that it can be pasted anywhere, and again.
std::string example(const std::string& lines) { return "Example:\n" + lines; }

/// One that begins with a study in $S/spine.
std::string exampleOnStudy(const std::string& lines) {
  return example("  S=$(mktemp -d) && vertana phantom --region lumbar --out $S/spine\n" + lines);
}

/// One that begins with that study labelled.
std::string exampleOnLabelled(const std::string& lines) {
  return exampleOnStudy("  vertana label $S/spine --line 197,46,204,274\n" + lines);
}

/// The argument that names a study, and where it lies.
void addStudy(CLI::App& command, std::string& study, std::string& database) {
  command.add_option("STUDY", study, "Folder of DICOM files, or a UID with --database")->required()->type_name("");
  command.add_option("--database", database, "Database folder that holds the study")->type_name("DIR");
}

void addDemo(CLI::App& app, RawArguments& raw) {
  auto* demo = app.add_subcommand("demo", "Label a phantom study and tell what came out");
  demo->add_option("--out", raw.demo.outDir, "New or empty folder (default: a temporary one)")->type_name("DIR");
  demo->footer(example("  vertana demo"));
}

void addPhantom(CLI::App& app, RawArguments& raw) {
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
  phantom->add_option("--image-size", raw.imageSize, "Rows and columns of every image, 16 to 1024")->type_name("N");
  phantom->footer(example("  vertana phantom --region lumbar --angled-axials --out $(mktemp -d)"));
}

void addImport(CLI::App& app, RawArguments& raw) {
  auto* import = app.add_subcommand("import", "Copy DICOM files into a database folder");
  import->add_option("PATH", raw.import.paths, "Files, or folders at any depth")->required()->type_name("");
  import->add_option("--database", raw.import.database, "Database folder (made when it is not there)")
      ->required()
      ->type_name("DIR");
  import->footer(exampleOnStudy("  vertana import $S/spine --database $S/database"));
}

void addInfo(CLI::App& app, RawArguments& raw) {
  auto* info = app.add_subcommand("info", "List a study's series, region and stored labelling");
  addStudy(*info, raw.info.study, raw.info.database);
  info->add_flag("--json", raw.info.json, "Print JSON for programs");
  info->footer(exampleOnStudy("  vertana info $S/spine"));
}

void addLabel(CLI::App& app, RawArguments& raw) {
  auto* label = app.add_subcommand("label", "Draw a line, name every axial slice, store it");
  addStudy(*label, raw.label.study, raw.label.database);
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
  label->footer(exampleOnStudy("  vertana label $S/spine --line 197,46,204,274"));
}

void addShow(CLI::App& app, RawArguments& raw) {
  auto* show = app.add_subcommand("show", "Print stored labellings, slice by slice");
  show->add_option("STUDY", raw.show.studies, "Folders of DICOM files, or UIDs with --database")->type_name("");
  show->add_option("--database", raw.show.database, "Database folder; without STUDY: all its studies")
      ->type_name("DIR");
  auto* json = show->add_flag("--json", raw.show.json, "Print JSON for programs");
  show->add_flag("--csv", raw.show.csv, "Print a table: a row a disc, a row a slice")->excludes(json);
  show->add_option("--jobs", raw.jobs, "Processes at once (default: one a processor)")->type_name("N");
  show->footer(exampleOnLabelled("  vertana show $S/spine"));
}

void addHistory(CLI::App& app, RawArguments& raw) {
  auto* history = app.add_subcommand("history", "List every labelling the study ever held");
  addStudy(*history, raw.history.study, raw.history.database);
  history->add_flag("--json", raw.history.json, "Print JSON for programs");
  history->footer(exampleOnLabelled("  vertana history $S/spine"));
}

void addRestore(CLI::App& app, RawArguments& raw) {
  auto* restore = app.add_subcommand("restore", "Make an earlier labelling count again");
  addStudy(*restore, raw.restore.study, raw.restore.database);
  restore->add_option("--object", raw.restore.object, "Its number in the history, or its UID")
      ->required()
      ->type_name("OBJECT");
  restore->footer(
      exampleOnLabelled("  vertana label $S/spine --line 192,46,204,274\n  vertana restore $S/spine --object 1"));
}

void addRender(CLI::App& app, RawArguments& raw) {
  auto* render = app.add_subcommand("render", "Paint a picture of each series, with its labels");
  addStudy(*render, raw.render.study, raw.render.database);
  render->add_option("--out", raw.render.outDir, "Folder for the PNG files")->required()->type_name("DIR");
  render->footer(exampleOnLabelled("  vertana render $S/spine --out $S/pictures"));
}

void addExport(CLI::App& app, RawArguments& raw) {
  auto* exported = app.add_subcommand("export", "Write the stored labelling for other programs");
  addStudy(*exported, raw.exported.study, raw.exported.database);
  exported
      ->add_option("--format", raw.exportFormat,
                   "json or csv (as show prints them),\nslicer (3D Slicer markups, .mrk.json) or\nsct (Spinal Cord "
                   "Toolbox disc labels, .nii)")
      ->required()
      ->type_name("FORMAT")
      ->check(checkFormat);
  exported->add_option("--out", raw.exported.outFile, "File to write to (an earlier one is replaced)")
      ->required()
      ->type_name("FILE");
  exported->footer(exampleOnLabelled("  vertana export $S/spine --format slicer --out $S/discs.mrk.json"));
}

void addPlay(CLI::App& app, RawArguments& raw) {
  auto* play = app.add_subcommand("play", "Run a session script and print its dumps");
  play->add_option("SCRIPT", raw.play.script, "File with the script (JSON)")->required()->type_name("");
  play->add_option("--database", raw.play.database, "Database folder, instead of the script's")->type_name("DIR");
  play->footer(
      exampleOnStudy("  echo '{\"steps\": [{\"do\": \"openStudy\", \"path\": \"'$S/spine'\"},\n"
                     "                   {\"do\": \"dump\"}]}' > $S/session.json\n"
                     "  vertana play $S/session.json"));
}

void addTerms(CLI::App& app, RawArguments& raw) {
  auto* terms = app.add_subcommand("terms", "List or forget what study descriptions taught");
  auto* list = terms->add_flag("--list", raw.listTerms, "List each term with its region (the default)");
  auto* forget = terms->add_option("--forget", raw.terms.forget, "Forget one term, written as it is listed");
  forget->type_name("TERM")->excludes(list);
  auto* all =
      terms->add_flag("--forget-all", raw.terms.forgetAll, "Forget every term")->excludes(list)->excludes(forget);
  terms->add_flag("--json", raw.terms.json, "Print the list as JSON for programs")->excludes(forget)->excludes(all);
  terms->footer(example("  vertana terms"));
}

}  // namespace

void addCommands(CLI::App& app, RawArguments& raw) {
  app.name("vertana");
  app.description("Names the levels of a spine study along one line that is drawn in it.");
  app.set_version_flag("--version", std::string("vertana ") + VERTANA_VERSION);
  app.require_subcommand(1);
  app.footer("Exit status: 0 done, 1 the study forbids it, 2 wrong usage, 3 input unreadable.\n" +
             example("  vertana demo"));
  addDemo(app, raw);
  addPhantom(app, raw);
  addImport(app, raw);
  addInfo(app, raw);
  addLabel(app, raw);
  addShow(app, raw);
  addHistory(app, raw);
  addRestore(app, raw);
  addRender(app, raw);
  addExport(app, raw);
  addPlay(app, raw);
  addTerms(app, raw);
}

}  // namespace cli
