/// \file
/// The command line. Only command_line.cpp sees CLI11, which takes long to compile.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veq::tool {

/// A command as it was set up, in command_line.cpp.
struct CommandRecord;

/// Adds options to one command. What an option gives is stored in its target, which must live as
/// long as the command line. Wrong values are wrong usage.
class Command {
 public:
  explicit Command(CommandRecord& record) : record_(&record) {}

  /// A required argument, or one of several, without a dash.
  void addPositional(const std::string& name, std::string& target, const std::string& description);
  /// One that may be missing where an option is given; the target stays empty then.
  void addPositionalUnless(const std::string& option, const std::string& name, std::string& target,
                           const std::string& description);
  void addFlag(const std::string& option, bool& target, const std::string& description);
  /// The target stays empty where the option is not given; an empty value is wrong usage. What it
  /// needs is said where there is none, as in "a file".
  void addText(const std::string& option, const std::string& valueName, const std::string& needs,
               std::string& target, const std::string& description);
  void addRequiredText(const std::string& option, const std::string& valueName,
                       const std::string& needs, std::string& target,
                       const std::string& description);
  /// One of several words; the target becomes its index.
  void addChoice(const std::string& option, const std::string& valueName,
                 const std::vector<std::string>& words, std::optional<std::size_t>& target,
                 const std::string& description);
  /// A whole number in decimal digits; required. In the second form it is not, or only where
  /// another option is not given.
  void addWholeNumber(const std::string& option, std::uint64_t& target, std::uint64_t least,
                      std::uint64_t most, const std::string& description);
  void addWholeNumber(const std::string& option, std::optional<std::uint64_t>& target,
                      std::uint64_t least, std::uint64_t most, const std::string& description,
                      const std::string& requiredUnless = {});
  /// A number in decimal digits from 0 on; required.
  void addNumber(const std::string& option, double& target, const std::string& description);
  /// A number from 0 to 1, or one that is above 0.
  void addShare(const std::string& option, bool aboveZero, std::optional<double>& target,
                const std::string& description);
  /// How many threads the library may use, for commands whose work they share.
  void addThreads();
  /// A command below this one. One of them must be chosen. What they are is said in messages, as
  /// in "command".
  Command addCommand(const std::string& what, const std::string& name, const std::string& summary,
                     const std::string& examples);
  /// What the command does once its arguments are read. In the second form it gives the exit code.
  void onRun(const std::function<void()>& action);
  void onRunWithCode(std::function<int()> action);

 private:
  CommandRecord* record_;
};

class CommandLine {
 public:
  CommandLine();
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// The examples end the command's help.
  Command addCommand(const std::string& name, const std::string& summary,
                     const std::string& examples);

  /// Runs the command that the arguments name, or prints help or what is wrong with them. The
  /// result is the exit code, 2 for wrong arguments; Failure and other exceptions pass through.
  int run(int argc, char** argv);

 private:
  std::unique_ptr<CommandRecord> root_;
};

/// \name The commands
/// @{
void addInfo(CommandLine& commandLine);
void addCheck(CommandLine& commandLine);
void addWalk(CommandLine& commandLine);
void addConvert(CommandLine& commandLine);
void addGenerate(CommandLine& commandLine);
void addComponents(CommandLine& commandLine);
void addPage(CommandLine& commandLine);
void addEnsemble(CommandLine& commandLine);
/// @}

}  // namespace veq::tool
