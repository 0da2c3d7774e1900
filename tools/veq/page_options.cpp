#include "page_options.hpp"

#include <filesystem>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "failure.hpp"
#include "progress_line.hpp"
#include "streams.hpp"
#include "suggestions.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

/// In the order of Layout, after the automatic one.
const std::vector<std::string>& layoutWords() {
  static const std::vector<std::string> words{"force", "given", "circle"};
  return words;
}

std::string& call() {
  static std::string words;
  return words;
}

/// As a shell takes it for one word.
std::string quoted(std::string_view word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./,=:+@%";
  if (!word.empty() && word.find_first_not_of(kPlain) == word.npos) return std::string(word);
  std::string text = "'";
  for (const char sign : word) text += sign == '\'' ? "'\\''" : std::string(1, sign);
  return text + "'";
}

std::vector<std::string> keysIn(const std::string& list) {
  std::vector<std::string> keys(1);
  for (const char sign : list) {
    if (sign == ',') {
      keys.emplace_back();
    } else {
      keys.back() += sign;
    }
  }
  for (const std::string& key : keys) {
    if (key.empty()) throw WrongUsage("--columns lists an empty name");
  }
  return keys;
}

}  // namespace

void addShowing(Command& command, Showing& showing) {
  command.addText("--title", "TEXT", "a text", showing.title,
                  "What to call it, by default as the file is called");
  command.addChoice("--layout", "LAYOUT", layoutWords(), showing.layout,
                    "Where vertices are: " + wordList(layoutWords(), "or") +
                        "; by default as the property \"Position\" says, or else by force");
  command.addText("--columns", "A,B,...", "names of properties", showing.columns,
                  "Which properties of vertices can be looked at, by default the first eight");
  command.addText("--color", "PROPERTY|degree|visits", "a property", showing.color,
                  "What to colour vertices by at first");
  command.addText("--size", "PROPERTY|constant|degree|strength|visits", "a property", showing.size,
                  "What the size of vertices is by at first");
}

void requireShown(const Showing& showing, bool shown, const std::string& needed) {
  if (shown) return;
  const auto refuse = [&](bool given, const std::string& option) {
    if (given) throw WrongUsage(option + " needs " + needed);
  };
  refuse(!showing.title.empty(), "--title");
  refuse(showing.layout.has_value(), "--layout");
  refuse(!showing.columns.empty(), "--columns");
  refuse(!showing.color.empty(), "--color");
  refuse(!showing.size.empty(), "--size");
}

PageOptions pageOptions(const Showing& showing, const std::string& file) {
  PageOptions options;
  options.title = showing.title;
  if (options.title.empty() && file == kStandardInput) options.title = "A network";
  if (options.title.empty()) options.title = std::filesystem::path(file).filename().string();
  if (showing.layout) options.layout = static_cast<Layout>(*showing.layout + 1);
  if (!showing.columns.empty()) options.columns = keysIn(showing.columns);
  options.color = showing.color;
  options.size = showing.size;
  options.call = rememberedCall();
  return options;
}

void rememberCall(int argc, char** argv) {
  call() = "veq";
  for (int i = 1; i < argc; ++i) call() += " " + quoted(argv[i]);
}

const std::string& rememberedCall() { return call(); }

void failShowing(const Error& error, const std::string& input, const std::string& output) {
  if (error.kind() == ErrorKind::kMemory) throw std::bad_alloc();
  throw Failure(error.kind() == ErrorKind::kFile ? outputName(output) : input, error.text());
}

void requireShowable(const Network& network, const PageOptions& options, const std::string& file) {
  const Outcome possible = checkPage(network, options);
  if (!possible) failShowing(possible.error(), file, {});
}

void savePage(const Network& network, const PageOptions& options, const WalkRecord* walk,
              const std::string& input, const std::string& output) {
  std::optional<Outcome> written;
  PageOptions followed = options;
  watch("drawing " + printable(outputName(output)), [&](const Progress& progress) {
    followed.progress = progress;
    written = writePage(output, network, followed, walk);
  });
  if (!*written) failShowing(written->error(), input, output);
}

}  // namespace veq::tool
