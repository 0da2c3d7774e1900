#include "command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <utility>

#include <veq/base/parallelism.hpp>

#include "failure.hpp"
#include "option_values.hpp"
#include "suggestions.hpp"
#include "text.hpp"

namespace veq::tool {

/// An option or argument. CLI11 only collects the texts that it was given; they are read when all
/// of them are known, so that what is missing is told before what is wrong.
struct OptionRecord {
  std::string name;
  std::string needs;  // empty for arguments without a dash
  bool required = false;
  std::string requiredUnless;  // an option that makes it needless
  std::function<void(const std::string&)> read;
  std::vector<std::string> texts;
};

struct CommandRecord {
  std::unique_ptr<CLI::App> root;  // nothing owns the application above all others
  CLI::App* app = nullptr;
  std::string what;  // what the commands below this one are called
  std::vector<std::unique_ptr<OptionRecord>> options;
  std::vector<std::unique_ptr<CommandRecord>> commands;
  std::function<int()> action;
};

namespace {

constexpr int kWrongUsage = 2;

constexpr auto kHelp = R"(Try
  veq info karate
  veq walk lesmis --agents 5 --steps 1000 --seed 1
with the two networks that come with the program, and veq help COMMAND, which
teaches each command by example.

Exit codes: 0, 1 where a file cannot be used, 2 for wrong usage.)";

CLI::Option* addOption(CommandRecord& command, const std::string& name, const std::string& needs,
                       bool required, std::function<void(const std::string&)> read,
                       const std::string& description) {
  command.options.push_back(
      std::make_unique<OptionRecord>(OptionRecord{name, needs, required, {}, std::move(read), {}}));
  OptionRecord* const record = command.options.back().get();
  const auto collect = [record](const CLI::results_t& texts) {
    record->texts = texts;
    return true;
  };
  CLI::Option* const option = command.app->add_option(name, collect, description);
  option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  return option->required(required);
}

void addWholeNumberTo(CommandRecord& command, const std::string& option, WholeNumbers range,
                      bool required, const std::function<void(std::uint64_t)>& store,
                      const std::string& description) {
  const auto read = [option, range, store](const std::string& text) {
    const auto value = readWholeNumber(text, range);
    if (!value) {
      throw WrongUsage(option + " needs " + wordsFor(range) + ", " + refusalOf(text, range));
    }
    store(*value);
  };
  addOption(command, option, "a number", required, read, description)->type_name("N");
}

/// The command that was named last.
CommandRecord& chosenFrom(CommandRecord& root) {
  CommandRecord* at = &root;
  for (bool found = true; found;) {
    found = false;
    for (const auto& command : at->commands) {
      if (!command->app->parsed()) continue;
      at = command.get();
      found = true;
      break;
    }
  }
  return *at;
}

std::vector<std::string> namesOfCommands(const CommandRecord& command) {
  std::vector<std::string> names;
  for (const auto& below : command.commands) names.push_back(below->app->get_name());
  return names;
}

std::vector<std::string> namesOfOptions(const CommandRecord& command) {
  std::vector<std::string> names{"--help"};
  if (!command.app->get_parent()) names.emplace_back("--version");
  for (const CLI::Option* option : command.app->get_options()) {
    if (!option->get_positional()) names.push_back(option->get_name());
  }
  return names;
}

std::string meant(const std::string& typed, const std::vector<std::string>& words) {
  const std::string nearest = nearestWord(typed, words);
  return nearest.empty() ? std::string() : ", did you mean " + nearest + "?";
}

/// Why no command was chosen of those below this one.
std::string noCommandReason(const CommandRecord& command, const std::string& typed) {
  const std::vector<std::string> names = namesOfCommands(command);
  if (typed.empty()) return "a " + command.what + " is missing: " + wordList(names, "or");
  const std::string reason = "there is no " + command.what + " \"" + typed + "\"";
  const std::string nearest = meant(typed, names);
  return reason + (nearest.empty() ? ": there are " + wordList(names) : nearest);
}

std::string surplusReason(const CommandRecord& command, const std::string& argument) {
  if (argument.size() < 2 || argument[0] != '-') {
    return "\"" + argument + "\" is one argument too many";
  }
  const std::string option = argument.substr(0, argument.find('='));
  return "there is no option " + option + meant(option, namesOfOptions(command));
}

bool isMissing(const OptionRecord& option, const CLI::App& app) {
  if (app.count(option.name) > 0) return false;
  return option.required ||
         (!option.requiredUnless.empty() && app.count(option.requiredUnless) == 0);
}

/// What is missing, all of it; empty where nothing is.
std::string missingReason(const CommandRecord& command) {
  std::string reason;
  for (const auto& option : command.options) {
    if (!isMissing(*option, *command.app)) continue;
    if (!reason.empty()) reason += "; ";
    reason += option->name;
    if (!option->requiredUnless.empty()) reason += " or " + option->requiredUnless;
    reason += option->needs.empty() ? " is missing" : " needs " + option->needs;
  }
  return reason;
}

/// What CLI11 says is worded otherwise in each version, and names one missing option of several.
std::string reasonOf(CommandRecord& root, const std::vector<std::string>& arguments,
                     const CLI::ParseError& error) {
  const CommandRecord& command = chosenFrom(root);
  const std::vector<std::string> surplus = root.app->remaining(true);
  if (!command.commands.empty() && (surplus.empty() || surplus[0][0] != '-')) {
    return noCommandReason(command, surplus.empty() ? "" : surplus[0]);
  }
  if (!surplus.empty()) return surplusReason(command, surplus[0]);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
    for (const auto& option : command.options) {
      if (option->name == arguments.back()) return option->name + " needs " + option->needs;
    }
    for (const std::string& argument : arguments) {
      const std::string name = argument.substr(0, argument.find('='));
      if (name != argument && name[0] == '-') return name + " takes no value";
    }
  }
  const std::string missing = missingReason(command);
  return missing.empty() ? error.what() : missing;
}

/// "veq dance --help" asks for help with nothing.
bool isCommandUnknown(CommandRecord& root) {
  const std::vector<std::string> surplus = root.app->remaining(true);
  return !chosenFrom(root).commands.empty() && !surplus.empty();
}

/// "veq help walk" is "veq walk --help", and CLI11 takes the argument behind "--start=" for its
/// value.
std::vector<std::string> plainArguments(int argc, char** argv) {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  if (!arguments.empty() && arguments[0] == "help") {
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
  }
  for (const std::string& argument : arguments) {
    if (argument == "--") break;
    if (argument.size() > 3 && argument.substr(0, 2) == "--" && argument.back() == '=') {
      throw WrongUsage(argument.substr(0, argument.size() - 1) + " has no value");
    }
  }
  return arguments;
}

void readValues(const CommandRecord& command) {
  if (const std::string missing = missingReason(command); !missing.empty()) {
    throw WrongUsage(missing);
  }
  for (const auto& option : command.options) {
    if (option->texts.size() > 1) throw WrongUsage(option->name + " is given twice");
    if (!option->texts.empty()) option->read(option->texts[0]);
  }
}

int reportWrongUsage(CommandRecord& root, const std::string& reason) {
  std::string help;
  for (const CLI::App* at = chosenFrom(root).app; at; at = at->get_parent()) {
    help.insert(0, at->get_name() + " ");
  }
  std::cerr << "veq: " << printable(reason) << " (see " << help << "--help)\n";
  return kWrongUsage;
}

void addPositionalTo(CommandRecord& record, const std::string& name, bool required,
                     std::string& target, const std::string& description) {
  const auto read = [name, &target](const std::string& text) {
    if (text.empty()) throw WrongUsage(name + " is empty");
    target = text;
  };
  addOption(record, name, "", required, read, description)->type_name("");
}

}  // namespace

void Command::addPositional(const std::string& name, std::string& target,
                            const std::string& description) {
  addPositionalTo(*record_, name, true, target, description);
}

void Command::addPositionalUnless(const std::string& option, const std::string& name,
                                  std::string& target, const std::string& description) {
  addPositionalTo(*record_, name, false, target, description);
  record_->options.back()->requiredUnless = option;
}

void Command::addFlag(const std::string& option, bool& target, const std::string& description) {
  record_->app->add_flag(option, target, description)->disable_flag_override();
}

void Command::addText(const std::string& option, const std::string& valueName,
                      const std::string& needs, std::string& target,
                      const std::string& description) {
  const auto read = [option, needs, &target](const std::string& text) {
    if (text.empty()) throw WrongUsage(option + " needs " + needs);
    target = text;
  };
  addOption(*record_, option, needs, false, read, description)->type_name(valueName);
}

void Command::addRequiredText(const std::string& option, const std::string& valueName,
                              const std::string& needs, std::string& target,
                              const std::string& description) {
  addText(option, valueName, needs, target, description);
  record_->options.back()->required = true;
  record_->app->get_option(option)->required();
}

void Command::addChoice(const std::string& option, const std::string& valueName,
                        const std::vector<std::string>& words, std::optional<std::size_t>& target,
                        const std::string& description) {
  const std::string needs = wordList(words, "or");
  const auto read = [option, words, needs, &target](const std::string& text) {
    const auto at = std::find(words.begin(), words.end(), text);
    if (at == words.end()) throw WrongUsage(option + " needs " + needs + ", not " + text);
    target = static_cast<std::size_t>(at - words.begin());
  };
  addOption(*record_, option, needs, false, read, description)->type_name(valueName);
}

void Command::addWholeNumber(const std::string& option, std::uint64_t& target, std::uint64_t least,
                             std::uint64_t most, const std::string& description) {
  addWholeNumberTo(
      *record_, option, {least, most}, true, [&target](std::uint64_t value) { target = value; },
      description);
}

void Command::addWholeNumber(const std::string& option, std::optional<std::uint64_t>& target,
                             std::uint64_t least, std::uint64_t most,
                             const std::string& description, const std::string& requiredUnless) {
  addWholeNumberTo(
      *record_, option, {least, most}, false, [&target](std::uint64_t value) { target = value; },
      description);
  record_->options.back()->requiredUnless = requiredUnless;
}

void Command::addShare(const std::string& option, bool aboveZero, std::optional<double>& target,
                       const std::string& description) {
  const auto read = [option, aboveZero, &target](const std::string& text) {
    const auto value = readShare(text);
    if (!value || (aboveZero && !(*value > 0))) {
      throw WrongUsage(option + " needs a number " +
                       (aboveZero ? "above 0 and up to 1" : "from 0 to 1") + ", not " + text);
    }
    target = *value;
  };
  addOption(*record_, option, "a number", false, read, description)->type_name("F");
}

void Command::addNumber(const std::string& option, double& target, const std::string& description) {
  const auto read = [option, &target](const std::string& text) {
    const auto value = readNumber(text);
    if (!value || !(*value >= 0)) {
      throw WrongUsage(option + " needs a number from 0 on, not " + text);
    }
    target = *value;
  };
  addOption(*record_, option, "a number", true, read, description)->type_name("X");
}

void Command::addThreads() {
  const auto store = [](std::uint64_t threads) { setParallelism(static_cast<unsigned>(threads)); };
  addWholeNumberTo(*record_, "--threads", {0, 1024}, false, store,
                   "How many threads may work; 0, the default: one for each processor");
}

Command Command::addCommand(const std::string& what, const std::string& name,
                            const std::string& summary, const std::string& examples) {
  record_->what = what;
  record_->app->require_subcommand(1);
  CLI::App* const app = record_->app->add_subcommand(name, summary);
  app->footer("Examples:\n" + examples);
  app->group("Commands");
  record_->commands.push_back(std::make_unique<CommandRecord>());
  record_->commands.back()->app = app;
  return Command(*record_->commands.back());
}

void Command::onRun(const std::function<void()>& action) {
  onRunWithCode([action] {
    action();
    return 0;
  });
}

void Command::onRunWithCode(std::function<int()> action) { record_->action = std::move(action); }

CommandLine::CommandLine() : root_(std::make_unique<CommandRecord>()) {
  root_->root = std::make_unique<CLI::App>(
      "Looks at complex networks and lets agents walk over them.", "veq");
  CLI::App* const app = root_->app = root_->root.get();
  app->get_formatter()->label("REQUIRED", "(required)");
  app->get_formatter()->label("Positionals", "Arguments");
  app->get_formatter()->label("SUBCOMMAND", "COMMAND");
  app->set_version_flag("-V,--version", "veq " VEQ_VERSION, "Print the version and exit");
  app->footer(kHelp);
  Command(*root_).addThreads();
}

CommandLine::~CommandLine() = default;

Command CommandLine::addCommand(const std::string& name, const std::string& summary,
                                const std::string& examples) {
  return Command(*root_).addCommand("command", name, summary, examples);
}

int CommandLine::run(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments = plainArguments(argc, argv);
    try {
      root_->app->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::Success& help) {
      if (isCommandUnknown(*root_)) throw WrongUsage(reasonOf(*root_, arguments, help));
      return root_->app->exit(help);
    } catch (const CLI::ParseError& error) {
      throw WrongUsage(reasonOf(*root_, arguments, error));
    }
    const CommandRecord& command = chosenFrom(*root_);
    readValues(*root_);
    readValues(command);
    return command.action();
  } catch (const WrongUsage& error) {
    return reportWrongUsage(*root_, error.what());
  }
}

}  // namespace veq::tool
