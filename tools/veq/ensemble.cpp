#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command_line.hpp"
#include "failure.hpp"

#if __has_include(<unistd.h>)
#include <unistd.h>
#define VEQ_CAN_BECOME_ANOTHER 1
#endif

namespace veq::tool {
namespace {

struct EnsembleArguments {
  std::string study;
  std::string engine;
  std::string checkpoint;
  std::string output;
  std::optional<std::uint64_t> workers;
  bool quiet = false;
};

constexpr auto kEnsembleExamples = R"(  veq ensemble study.toml
      Runs all tasks of a study on this machine, a thread for each processor, and
      writes a table of what came of each. For example, with study.toml
        seed = 7
        output = "study.csv"
        [networks]
        lesmis = "lesmis.xnet"
        [task]
        starts = ["Valjean"]
        until = 0.9
        collect = ["steps"]
        [grid]
        memory = [1, 2, 4, 8]
        repetition = 100
  veq ensemble study.toml --engine tcp://node1:8786 --checkpoint study.kept
      The same by the workers of a Dask scheduler, and the same numbers. Whatever
      is killed, the same command goes on with what is in study.kept.

It needs the Python package of veq: that of python3, or of the Python that the
variable VEQ_PYTHON names. Task I draws what veq walk --seed 7 --substream I does.)";

// The folder of the caller may have files that are called like a package.
constexpr auto kRun = R"(import sys
sys.path[:] = filter(None, sys.path)
try:
    from veq.ensemble.__main__ import main
except ImportError as error:
    sys.exit(f'veq: ensembles are run by the Python package veq, which {sys.executable} does not '
             f'have ({error}): install it with "{sys.executable} -m pip install ." in the source '
             'tree of veq, or name a Python that has it in VEQ_PYTHON')
sys.exit(main())
)";

std::vector<std::string> commandFor(const EnsembleArguments& arguments) {
  const char* const named = std::getenv("VEQ_PYTHON");
  std::vector<std::string> command{named && *named ? named : "python3", "-c", kRun,
                                   arguments.study};
  const auto add = [&](const char* option, const std::string& value) {
    if (!value.empty()) command.insert(command.end(), {option, value});
  };
  add("--engine", arguments.engine);
  add("--checkpoint", arguments.checkpoint);
  add("--output", arguments.output);
  if (arguments.workers) add("--workers", std::to_string(*arguments.workers));
  if (arguments.quiet) command.emplace_back("--quiet");
  // What begins with a dash is a file, too.
  if (arguments.study[0] == '-') command[3] = "./" + command[3];
  return command;
}

void become(const std::vector<std::string>& command) {
  std::string cause = "this system cannot start it";
#ifdef VEQ_CAN_BECOME_ANOTHER
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execvp(words[0], words.data());
  cause = std::strerror(errno);
#endif
  throw Failure(command[0], cause +
                                ", and ensembles are run by Python and its package veq: install "
                                "it with \"pip install .\" in the source tree of veq");
}

}  // namespace

void addEnsemble(CommandLine& commandLine) {
  const auto arguments = std::make_shared<EnsembleArguments>();
  Command command = commandLine.addCommand("ensemble", "Run many walks and models of a study file",
                                           kEnsembleExamples);
  command.addPositional("STUDY", arguments->study, "A study in TOML");
  command.addText("--engine", "ENGINE", "a name or an address", arguments->engine,
                  "threads, processes, or the address of a Dask scheduler");
  command.addWholeNumber("--workers", arguments->workers, 0, 100000,
                         "How many threads or processes; 0: one task after the other");
  command.addText("--checkpoint", "DIR", "a folder", arguments->checkpoint,
                  "Keep results there while they come, and go on from there");
  command.addText("--output", "FILE", "a file", arguments->output, "The table, .csv or .parquet");
  command.addFlag("--quiet", arguments->quiet, "Say nothing");
  command.onRun([arguments] { become(commandFor(*arguments)); });
}

}  // namespace veq::tool
