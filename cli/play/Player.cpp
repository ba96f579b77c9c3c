#include "cli/play/Player.h"

#include <ostream>

#include "cli/Console.h"
#include "cli/play/Dump.h"

namespace cli {

Player::Process::Process(std::unique_ptr<OpenedStudies> opened, const workstation::Options& options)
    : studies(std::move(opened)), session(studies->shelf(), options) {}

Player::Player(const Script& script, std::string database, std::ostream& out)
    : database_(std::move(database)), out_(out), defaults_(script.defaults) {
  options_.hostVersion = script.hostVersion;
  for (const auto& name : script.hostLacks) options_.lacking.insert(*workstation::capabilityNamed(name));
  options_.defaultsStore = &defaults_;
}

Player::~Player() = default;

Expected<std::unique_ptr<Player>> Player::start(const Script& script, const std::string& database, std::ostream& out) {
  std::unique_ptr<Player> player(new Player(script, database, out));
  if (auto failure = player->startProcess()) return *failure;
  return player;
}

std::optional<Failure> Player::startProcess() {
  auto studies = OpenedStudies::open(database_, pathsInPlace_);
  if (!studies) return studies.failure;
  process_ = std::make_unique<Process>(std::move(*studies), options_);
  process_->session.store().setFailing(savesFail_);
  if (const auto loaded = process_->session.loadPlugin(); !loaded) return Failure{ExitUnreadable, *loaded.problem};
  return std::nullopt;
}

std::optional<Failure> Player::run(const Step& step) {
  auto failure = std::visit([&](const auto& kind) { return runStep(kind); }, step);
  if (process_) collect();
  return failure;
}

void Player::collect() {
  for (auto& alert : workstation().takeAlerts()) alerts_.push_back(std::move(alert));
  for (auto& address : workstation().takeOpenedAddresses()) addresses_.push_back(std::move(address));
  for (const auto& notice : process_->session.store().takeNotices()) printMessage(notice);
}

std::optional<Failure> Player::quit() {
  workstation().quit();
  collect();
  std::optional<Failure> failure;
  for (const auto& study : studies_) {
    const auto status = process_->session.store().status(study);
    if (!status.unsaved || failure) continue;
    failure = {ExitNotAllowed, "The labelling of the study " + study + " could not be stored: " + status.problem};
  }
  pathsInPlace_ = process_->studies->paths();
  process_.reset();
  return failure;
}

std::optional<Failure> Player::runStep(const RestartStep&) {
  quit();  // what could not be stored is told then, and lost as it would be to a person
  return startProcess();
}

std::optional<Failure> Player::runStep(const CrashStep&) {
  collect();
  pathsInPlace_ = process_->studies->paths();
  process_.reset();
  return startProcess();
}

std::optional<Failure> Player::runStep(const FailSavesStep& step) {
  savesFail_ = step.on;
  process_->session.store().setFailing(savesFail_);
  return std::nullopt;
}

std::optional<Failure> Player::runStep(const AddReportStep& step) {
  return process_->studies->addReport(step.path, step.file);
}

std::optional<Failure> Player::runStep(const DumpStep& step) {
  DumpHeader header{step.name, std::move(alerts_), std::move(addresses_), studies_};
  alerts_.clear();
  addresses_.clear();
  out_ << dumpLine(workstation(), process_->session.store(), header) << '\n' << std::flush;
  if (out_) return std::nullopt;
  out_.clear();  // it is told here, and not again at the end
  return Failure{ExitNotAllowed, "The dump could not be written to standard output."};
}

}  // namespace cli
