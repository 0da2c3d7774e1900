/// \file
/// What commands that write pages and pictures share.
#pragma once

#include <optional>
#include <string>

#include <veq/veq.hpp>

#include "command_line.hpp"

namespace veq::tool {

/// How a network is to be shown.
struct Showing {
  std::string title;
  std::optional<std::size_t> layout;
  std::string columns;
  std::string color;
  std::string size;
};

/// Adds the options.
void addShowing(Command& command, Showing& showing);

/// Wrong usage where an option of showing is given and nothing that shows; `needed` says what.
void requireShown(const Showing& showing, bool shown, const std::string& needed);

/// The options of a page by the name of the file; by default it has that for a title.
[[nodiscard]] PageOptions pageOptions(const Showing& showing, const std::string& file);

/// How the program was called, as a shell would take it.
void rememberCall(int argc, char** argv);
[[nodiscard]] const std::string& rememberedCall();

/// Failure where a page of the network is impossible.
void requireShowable(const Network& network, const PageOptions& options, const std::string& file);

/// Throws why there is no page or picture of the network in the file: a Failure, or what memory
/// lacks.
[[noreturn]] void failShowing(const Error& error, const std::string& input,
                              const std::string& output);

/// Writes a page, drawing how far the layout is.
void savePage(const Network& network, const PageOptions& options, const WalkRecord* walk,
              const std::string& input, const std::string& output);

}  // namespace veq::tool
