/// \file
/// The veq program. Exit codes: 0, 1 where input or output fails, 2 for wrong usage, 3 where check
/// finds that something in a file is mended or left out.
#include <exception>
#include <iostream>
#include <new>
#include <string_view>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "page_options.hpp"
#include "streams.hpp"
#include "terminal.hpp"
#include "text.hpp"

namespace {

int fail(std::string_view reason) {
  std::cerr << "veq: " << veq::tool::printable(reason) << '\n';
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  veq::setDiagnosticSink({});
  veq::setParallelism(0);
  veq::tool::tidyUpOnSignals();
  try {
    veq::tool::CommandLine commandLine;
    veq::tool::addInfo(commandLine);
    veq::tool::addCheck(commandLine);
    veq::tool::addWalk(commandLine);
    veq::tool::addConvert(commandLine);
    veq::tool::addGenerate(commandLine);
    veq::tool::addComponents(commandLine);
    veq::tool::addPage(commandLine);
    veq::tool::addEnsemble(commandLine);
    veq::tool::rememberCall(argc, argv);
    const int code = commandLine.run(argc, argv);
    veq::tool::flushStandardOutput();
    return code;
  } catch (const std::bad_alloc&) {
    return fail("not enough memory");
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}
