/// \file
/// The formats that networks are read and written in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// \name What the options --from and --to call the formats, in the order of FileFormat
/// @{
[[nodiscard]] const std::vector<std::string>& wordsForReading();
[[nodiscard]] const std::vector<std::string>& wordsForWriting();
/// @}

/// The format of a file to write: the one of this place in wordsForWriting(), else the one that the
/// suffix stands for. Failure, with what is known, where neither is there.
[[nodiscard]] FileFormat formatToWrite(std::string_view file, std::optional<std::size_t> word);

}  // namespace veq::tool
