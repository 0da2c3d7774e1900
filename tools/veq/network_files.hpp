/// \file
/// Networks in files and standard streams.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <veq/veq.hpp>

#include "command_line.hpp"

namespace veq::tool {

/// A network to read, as the options of a command name it.
struct Input {
  std::string file;
  std::optional<std::size_t> from;
  bool directed = false;
  bool strict = false;
  bool quiet = false;
  bool allNotes = false;
};

/// Adds the argument FILE, or what it is called, and the options of reading.
void addInput(Command& command, const std::string& name, Input& input);

/// A network to write.
struct Output {
  std::string file;
  std::optional<std::size_t> to;
};

/// Adds the option --to.
void addOutputFormat(Command& command, Output& output);

/// Adds the option --format, whose value is an Answer.
void addAnswer(Command& command, std::optional<std::size_t>& format);

struct LoadedNetwork {
  Shared<VEQNetwork> network;
  /// The file that was read; "standard input" for that.
  std::string name;
};

/// Reads a network, and says on standard error what was made of the file where that is not plain; a
/// Failure says why it cannot be read. A plain name that is no file stands for a network that comes
/// with the program, which is said as well.
[[nodiscard]] LoadedNetwork loadNetwork(const Input& input);

/// Writes a network atomically, and says on standard error what the format does not keep. Failure,
/// and nothing is written, where the file could not be read back or cannot be written.
void saveNetwork(const Shared<VEQNetwork>& network, const Output& output);

/// Failure where the output's format is not known or the file cannot possibly be written, so that
/// nobody computes for an hour in vain.
void requireWritable(const Output& output);

/// Says on standard error what people should know about a file.
void note(const std::string& file, std::string_view text);

/// "34 vertices, 78 edges, undirected".
[[nodiscard]] std::string sizeText(const VEQNetwork& network);

}  // namespace veq::tool
