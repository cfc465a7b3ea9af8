#include "Apps/kestrom/WalkCommand.hpp"

#include <CLI/CLI.hpp>

#include <cmath>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <optional>
#include <string>

namespace {

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

}  // namespace

int main(int argc, char** argv) {
  CLI::App program{"The kit on the command line: runs, scripts and checks what an app would embed", "kestrom"};
  program.require_subcommand(1);
  WalkArguments walk;
  std::function<int()> run;
  addWalk(program, walk, run);

  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return program.exit(error, std::cout, std::cerr) == 0 ? 0 : kWrongUsage;
  }
  const int status = run();
  if (!std::cout.flush()) {
    std::cerr << "kestrom: the standard output cannot be written\n";
    return kFailed;
  }
  return status;
}
