#include "command_line.hpp"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <iostream>
#include <system_error>
#include <utility>
#include <vector>

#include "failure.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

constexpr int kWrongUsage = 2;

constexpr auto kHelp = R"(Try
  veq info data/lesmis.xnet
  veq walk data/lesmis.xnet --agents 5 --steps 1000 --seed 1
and veq COMMAND --help, which teaches each command by example.

Exit codes: 0, 1 where a file cannot be used, 2 for wrong usage.)";

/// The number that the whole text is.
template <class T>
std::optional<T> parsed(const std::string& text) {
  T value{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

/// CLI11 itself would take -1 and 2^64 for 2^64 - 1, and 010 for 8.
template <class Target>
CLI::Option* addInteger(CLI::App& app, const std::string& option, Target& target,
                        std::uint64_t least, std::uint64_t most, const std::string& description) {
  const auto read = [option, &target, least, most](const std::string& text) {
    const auto value = parsed<std::uint64_t>(text);
    if (!value || *value < least || *value > most) {
      throw WrongUsage(option, "must be a whole number from " + std::to_string(least) + " to " +
                                   std::to_string(most) + ", not " + text);
    }
    target = *value;
  };
  return app.add_option_function<std::string>(option, read, description)->type_name("N");
}

Command addCommandTo(CLI::App& app, const std::string& name, const std::string& summary,
                     const std::string& examples) {
  CLI::App* const command = app.add_subcommand(name, summary);
  command->footer("Examples:\n" + examples);
  return Command(*command);
}

/// CLI11's reason, and for an unknown command the reason that it lacks.
std::string reasonOf(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining();
  if (app.get_subcommands().empty() && !unknown.empty()) {
    return "there is no command \"" + unknown.front() + "\"";
  }
  return error.what();
}

int reportWrongUsage(const CLI::App& app, const std::string& reason) {
  std::string help = "veq";
  for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    help += " " + at->get_name();
  }
  std::cerr << "veq: " << printable(reason) << " (see " << help << " --help)\n";
  return kWrongUsage;
}

}  // namespace

void Command::addPositional(const std::string& name, std::string& target,
                            const std::string& description) {
  app_->add_option(name, target, description)->required()->type_name("");
}

void Command::addFlag(const std::string& option, bool& target, const std::string& description) {
  app_->add_flag(option, target, description);
}

void Command::addText(const std::string& option, const std::string& valueName, std::string& target,
                      const std::string& description) {
  app_->add_option(option, target, description)->type_name(valueName);
}

void Command::addWholeNumber(const std::string& option, std::uint64_t& target, std::uint64_t least,
                             std::uint64_t most, const std::string& description) {
  addInteger(*app_, option, target, least, most, description)->required();
}

void Command::addWholeNumber(const std::string& option, std::optional<std::uint64_t>& target,
                             std::uint64_t least, std::uint64_t most,
                             const std::string& description) {
  addInteger(*app_, option, target, least, most, description);
}

void Command::addFraction(const std::string& option, std::optional<float>& target,
                          const std::string& description) {
  const auto read = [option, &target](const std::string& text) {
    const auto value = parsed<float>(text);
    if (!value || !(*value >= 0 && *value <= 1)) {
      throw WrongUsage(option, "must be a number from 0 to 1, not " + text);
    }
    target = *value;
  };
  app_->add_option_function<std::string>(option, read, description)->type_name("F");
}

void Command::addNumber(const std::string& option, double& target, const std::string& description) {
  const auto read = [option, &target](const std::string& text) {
    const auto value = parsed<double>(text);
    if (!value || !(*value >= 0 && std::isfinite(*value))) {
      throw WrongUsage(option, "must be a number from 0 on, not " + text);
    }
    target = *value;
  };
  app_->add_option_function<std::string>(option, read, description)->type_name("X")->required();
}

Command Command::addCommand(const std::string& name, const std::string& summary,
                            const std::string& examples) {
  app_->require_subcommand(1);
  return addCommandTo(*app_, name, summary, examples);
}

void Command::onRun(std::function<void()> action) { app_->callback(std::move(action)); }

CommandLine::CommandLine()
    : app_(std::make_unique<CLI::App>("Looks at complex networks and lets agents walk over them.",
                                      "veq")) {
  app_->set_version_flag("--version", "veq " VEQ_VERSION, "Print the version and exit");
  app_->require_subcommand(1);
  app_->footer(kHelp);
}

CommandLine::~CommandLine() = default;

Command CommandLine::addCommand(const std::string& name, const std::string& summary,
                                const std::string& examples) {
  return addCommandTo(*app_, name, summary, examples);
}

int CommandLine::run(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
    return 0;
  } catch (const CLI::Success& help) {
    return app_->exit(help);
  } catch (const CLI::ParseError& error) {
    return reportWrongUsage(*app_, reasonOf(*app_, error));
  } catch (const WrongUsage& error) {
    return reportWrongUsage(*app_, error.what());
  }
}

}  // namespace veq::tool
