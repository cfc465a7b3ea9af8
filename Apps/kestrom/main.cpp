#include "Apps/kestrom/Lint/LintCommand.hpp"
#include "Apps/kestrom/PreviewCommand.hpp"
#include "Apps/kestrom/StatusCommand.hpp"
#include "Apps/kestrom/WalkCommand.hpp"

#include <CLI/CLI.hpp>

#include <cmath>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <optional>
#include <string>

namespace {

using kestrom::app::HostOptions;
using kestrom::app::LintArguments;
using kestrom::app::PreviewArguments;
using kestrom::app::StatusArguments;
using kestrom::app::WalkArguments;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr const char* kDocumentsHelp =
    "Directory in which the local files of answers are looked for (default: the present one)";

void requireOneStandardInput(std::initializer_list<std::optional<std::string>> files) {
  int count = 0;
  for (const auto& file : files) count += file == "-" ? 1 : 0;
  if (count > 1) throw CLI::ValidationError("-", "only one document can come from the standard input");
}

void addWalk(CLI::App& program, WalkArguments& arguments, std::function<int()>& run) {
  CLI::App* command = program.add_subcommand(
      "walk", "Walks a template with the answers given so far and prints the state of the conversation as JSON");
  command->add_option("TEMPLATE", arguments.templateFile, "The template's JSON; - reads the standard input")
      ->required();
  command->add_option("--answers", arguments.answersFile,
                      "Answers given so far: the server's history (an object) or the device's answers file (a list)");
  command->add_option("--case", arguments.caseFile,
                      "JSON object of a case; adds the rows of the chat, placeholders filled");
  command->add_option("--now", arguments.now, "Present time in seconds since 1970 (default: the clock's)");
  command->add_option("--documents", arguments.documentsDirectory, kDocumentsHelp);
  command->add_flag("--compact", arguments.compact, "Prints the object on one line");
  command->callback([&arguments, &run] {
    requireOneStandardInput({arguments.templateFile, arguments.answersFile, arguments.caseFile});
    if (arguments.now && !std::isfinite(*arguments.now)) throw CLI::ValidationError("--now", "no point in time");
    run = [&arguments] { return kestrom::app::runWalk(arguments, std::cin, std::cout, std::cerr); };
  });
}

void addLint(CLI::App& program, LintArguments& arguments, std::function<int()>& run) {
  CLI::App* command = program.add_subcommand("lint", "Checks templates before they are published");
  command->add_option("TEMPLATE", arguments.templates, "Templates to check")->required();
  command->add_option("--case", arguments.caseFile, "JSON object of a case, against which placeholders are checked");
  command->add_flag("--json", arguments.json, "Prints one JSON object a finding");
  command->callback(
      [&arguments, &run] { run = [&arguments] { return kestrom::app::runLint(arguments, std::cout, std::cerr); }; });
}

void addPreview(CLI::App& program, PreviewArguments& arguments, std::function<int()>& run) {
  CLI::App* command = program.add_subcommand("preview", "Runs a template as a chat in the terminal, without a server");
  command->add_option("TEMPLATE", arguments.templateFile, "The template's JSON")->required();
  command->add_option("--case", arguments.caseFile, "JSON object of a case, from which placeholders are filled");
  command->add_option("--answers", arguments.answersFile,
                      "The device's answers file: answers are read from it and kept in it, so that a preview resumes");
  command->add_option("--script", arguments.scriptFile, "Answers, one a line; runs unattended");
  command->add_option("--documents", arguments.documentsDirectory, kDocumentsHelp);
  command->footer(
      "Answers:\n"
      "  a choice      its number or its key (the number counts where both are possible)\n"
      "  choices       numbers or keys, separated by commas, in the order of choosing\n"
      "  a capture     the choice, a blank and the path of the media file; for a panorama or a mesh scan the paths of\n"
      "                a .tar file and an image, separated by a blank\n"
      "  a location    the choice, a blank and the address\n"
      "  anything else as it is asked for\n"
      "Commands:\n"
      "  /edit         the next answer replaces the last one, if that can be edited\n"
      "  /state        progress, pending node, module, iteration\n"
      "  /quit         ends; what was answered stays in the answers file\n"
      "In a script blank lines and lines that start with # are passed over.");
  command->callback([&arguments, &run] {
    requireOneStandardInput({arguments.templateFile, arguments.caseFile, arguments.scriptFile.value_or("-")});
    if (arguments.answersFile == "-")
      throw CLI::ValidationError("--answers", "the answers are kept in a file; - is none");
    run = [&arguments] { return kestrom::app::runPreview(arguments, std::cin, std::cout, std::cerr); };
  });
}

void addHostOptions(CLI::App& command, HostOptions& options) {
  command.add_option("--organization", options.organization, "The configuration's organization");
  command.add_option("--environment", options.environment, "staging, sandbox or production (default: sandbox)");
  command.add_option("--font", options.font, "The configuration's font family");
  command.add_flag("--no-configuration", options.noConfiguration, "Leaves the kit without a configuration");
  command.add_option("--connect-to", options.connectTo,
                     "HOST:PORT that every connection goes to; URL and certificate check stay those of the API host");
  command.add_option("--cacert", options.caFile, "Certificate authority to trust instead of the system's (PEM)");
  command.add_option("--documents", options.documentsDirectory, "The documents directory");
  command.add_option("--temporary", options.temporaryDirectory, "The temporary directory");
  command.add_flag("--logs", options.logs, "Writes the kit's log to the standard error stream");
  command.add_option("--location", options.location,
                     "What the device's location does: LAT,LNG, LAT,LNG,reduced, denied, fails or never (default: "
                     "denied)");
  command.add_option("--notifications", options.notifications,
                     "The permission for notifications: undetermined, granted or denied (default: undetermined)");
  command.add_option("--app-name", options.appName, "What the host's bundle says of its name");
  command.add_option("--app-version", options.appVersion, "What the host's bundle says of its version");
  command.add_option("--phone-model", options.phoneModel, "What the device says of its hardware");
}

void addStatus(CLI::App& program, StatusArguments& arguments, std::function<int()>& run) {
  CLI::App* command = program.add_subcommand("status", "Asks a server for the state of a case and prints it as JSON");
  command->add_option("--zip", arguments.zipCode, "Postal code of the property")->required();
  command->add_option("--access", arguments.accessCode, "Access code of the case")->required();
  addHostOptions(*command, arguments.host);
  command->callback(
      [&arguments, &run] { run = [&arguments] { return kestrom::app::runStatus(arguments, std::cout, std::cerr); }; });
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program{"The kit on the command line: runs, scripts and checks what an app would embed", "kestrom"};
  program.require_subcommand(1);
  WalkArguments walk;
  LintArguments lint;
  PreviewArguments preview;
  StatusArguments status;
  std::function<int()> run;
  addWalk(program, walk, run);
  addLint(program, lint, run);
  addPreview(program, preview, run);
  addStatus(program, status, run);

  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return program.exit(error, std::cout, std::cerr) == 0 ? 0 : kWrongUsage;
  }
  const int exitStatus = run();
  if (!std::cout.flush()) {
    std::cerr << "kestrom: the standard output cannot be written\n";
    return kFailed;
  }
  return exitStatus;
}
