#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "command_line.hpp"
#include "data.hpp"
#include "format.hpp"
#include "losses.hpp"
#include "network_files.hpp"
#include "progress_line.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

struct CheckArguments {
  Input input;
  std::optional<std::size_t> format;
};

constexpr auto kCheckExamples = R"(  veq check data/karate.xnet
      What the file is, everything that is odd in it, and what a file of each
      format would keep and lose of the network.
  veq check --format json data/lesmis.xnet
      For other programs; --format csv has lines "key,value".
  veq check --quiet data/karate.xnet
      Only whether something in the file is mended or left out.

The exit code is 0 where the network is all that the file holds, 3 where something
in it is mended or left out, and 1 where it cannot be read.)";

/// Something in the file is mended or left out.
constexpr int kOdd = 3;

constexpr std::array<std::string_view, 3> kKinds{"taken", "repaired", "left out"};

std::string_view kindOf(const Note& note) { return kKinds[static_cast<std::size_t>(note.kind)]; }

/// What a file of one format would lose.
struct FormatReport {
  std::string format;
  Losses losses;
};

std::vector<FormatReport> reportsOn(const Shared<VEQNetwork>& network) {
  std::vector<FormatReport> reports;
  for (const std::string& word : wordsForWriting()) {
    const FileFormat format = *fileFormatNamed(word);
    reports.push_back({word, writtenAs(network, format).losses});
  }
  return reports;
}

void printLine(std::string_view name, std::string_view value) {
  std::cout << name << std::string(20 - name.size(), ' ') << value << '\n';
}

void printNote(const Note& note) {
  std::string text = note.place.line > 0 ? "line " + std::to_string(note.place.line) + ": " : "";
  text += printable(note.text);
  if (note.count > 1) text += " (" + std::to_string(note.count) + " times)";
  printLine(kindOf(note), text);
}

void printReport(const FormatReport& report) {
  const std::string name = "as " + report.format;
  const Losses& losses = report.losses;
  if (losses.unknown) return printLine(name, "not known, as this program does not read it");
  if (losses.isTotal()) return printLine(name, "cannot be written: " + printable(losses.total));
  if (losses.differences.empty()) return printLine(name, "keeps everything");
  std::string_view before = name;
  for (const Difference& difference : losses.differences) {
    printLine(before, (difference.loses ? "loses: " : "keeps, but: ") + printable(difference.text));
    before = "";
  }
}

void print(const ReadFile& file, const std::vector<FormatReport>& reports) {
  const Reading& reading = file.reading;
  printLine("format", nameOf(*reading.format()));
  if (!reading.title().empty()) printLine("title", printable(reading.title()));
  printLine("network", sizeText(*reading.value().published()));
  for (const Note& note : reading.notes()) printNote(note);
  for (const FormatReport& report : reports) printReport(report);
}

Data dataOf(const Note& note) {
  return Data::object()
      .set("kind", std::string(kindOf(note)))
      .set("line", note.place.line > 0 ? Data(note.place.line) : Data())
      .set("text", note.text)
      .set("count", note.count);
}

Data dataOf(const Losses& losses) {
  Data lost = Data::list();
  Data changed = Data::list();
  for (const Difference& difference : losses.differences) {
    (difference.loses ? lost : changed).add(difference.text);
  }
  return Data::object()
      .set("written", losses.unknown ? Data() : Data(!losses.isTotal()))
      .set("reason", losses.isTotal() ? Data(losses.total) : Data())
      .set("lost", lost)
      .set("changed", changed);
}

Data dataOf(const ReadFile& file, const std::vector<FormatReport>& reports) {
  const VEQNetwork& network = *file.reading.value().published();
  Data notes = Data::list();
  for (const Note& note : file.reading.notes()) notes.add(dataOf(note));
  Data formats = Data::object();
  for (const FormatReport& report : reports) formats.set(report.format, dataOf(report.losses));
  return Data::object()
      .set("file", file.name)
      .set("format", std::string(nameOf(*file.reading.format())))
      .set("title", file.reading.title())
      .set("directed", network.isDirected())
      .set("vertices", network.countVertices())
      .set("edges", network.countEdges())
      .set("notes", notes)
      .set("formats", formats);
}

int check(const CheckArguments& arguments) {
  const ReadFile file = readInput(arguments.input, UINT64_MAX);
  requireRead(arguments.input, file);
  bool odd = false;
  for (const Note& note : file.reading.notes()) odd |= note.kind != NoteKind::kTaken;
  const int code = odd ? kOdd : 0;
  if (arguments.input.quiet) return code;
  std::vector<FormatReport> reports;
  watch("writing each format", [&] { reports = reportsOn(file.reading.value().published()); });
  const auto answer = static_cast<Answer>(arguments.format.value_or(0));
  if (answer == Answer::kTable) print(file, reports);
  if (answer == Answer::kJson) dataOf(file, reports).writeJson(std::cout);
  if (answer == Answer::kCsv) dataOf(file, reports).writeCsv(std::cout);
  return code;
}

}  // namespace

void addCheck(CommandLine& commandLine) {
  const auto arguments = std::make_shared<CheckArguments>();
  Command command = commandLine.addCommand(
      "check", "Say what is odd in a file and which formats keep it", kCheckExamples);
  addInput(command, "FILE", arguments->input);
  addAnswer(command, arguments->format);
  command.onRunWithCode([arguments] { return check(*arguments); });
}

}  // namespace veq::tool
