/// \file
/// Networks in files and standard streams.
#pragma once

#include <cstdint>
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
  /// Whether a file that loses something is written, which is then said.
  bool mayLose = true;
  /// Whether vertices without a name are called by their numbers.
  bool numberNames = false;
  /// Where the vertices of a CSV file go; nowhere where it is empty.
  std::string vertexTable = {};
};

/// Adds the option --to.
void addOutputFormat(Command& command, Output& output);

/// Adds the option --format, whose value is an Answer.
void addAnswer(Command& command, std::optional<std::size_t>& format);

/// What came of reading a file.
struct ReadFile {
  Reading reading;
  /// The file that was read; "standard input" for that.
  std::string name;
};

/// Reads as the options of a command say and keeps so many notes.
[[nodiscard]] ReadFile readInput(const Input& input, std::uint64_t mostNotes);

/// Throws what is wrong with a file that could not be read, or with options that do not go with it.
void requireRead(const Input& input, const ReadFile& file);

struct LoadedNetwork {
  Shared<VEQNetwork> network;
  /// The file that was read; "standard input" for that.
  std::string name;
};

/// Reads a network, and says on standard error what was made of the file where that is not plain; a
/// Failure says why it cannot be read. A plain name that is no file stands for a network that comes
/// with the program, which is said as well.
[[nodiscard]] LoadedNetwork loadNetwork(const Input& input);

struct LoadedWalkNetwork {
  WalkNetwork network;
  /// The file that was read; "standard input" for that.
  std::string name;
};

/// The same for a network that keeps rows and neighbours alone, and on which a walk takes so many
/// further bytes for each vertex. The memory for both is said before it is taken, and is too much
/// where there is less.
[[nodiscard]] LoadedWalkNetwork loadWalkNetwork(const Input& input, std::uint64_t walkBytes);

/// Writes a network atomically, and says on standard error what the format does not keep. Failure,
/// and nothing is written, where the file could not be read back, cannot be written, or loses what
/// it may not. Changes the names of the network where it numbers them.
void saveNetwork(const Shared<VEQNetwork>& network, const Output& output);

/// Failure where the output's format is not known or the file cannot possibly be written, so that
/// nobody computes for an hour in vain.
void requireWritable(const Output& output);

/// Says on standard error what people should know about a file.
void note(const std::string& file, std::string_view text);

/// "34 vertices, 78 edges, undirected".
[[nodiscard]] std::string sizeText(std::uint64_t vertices, std::uint64_t edges, bool directed);
[[nodiscard]] std::string sizeText(const VEQNetwork& network);

}  // namespace veq::tool
