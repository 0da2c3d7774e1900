/// \file
/// Reading every file, also those that need more than the C++ standard library.
#pragma once

#include <string>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/formats/reading.hpp"
#include "veq/formats/walk_reading.hpp"

namespace veq::readers {

/// As veq::readNetwork, and GraphML besides, and any format compressed by gzip or zstd. A part of
/// the library veq::readers, which needs pugixml, zlib and zstd.
///
/// What is compressed is told by its content. More than ReadOptions::mostBytes of it, by default 64
/// times the file's size and a GiB, is an error of kind kFormat, and so is what ends too early.
/// XML opens no other file and expands no entities of its own.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Reading readNetwork(const std::string& path,
                                             const ReadOptions& options = {});

/// The same from the bytes of a file. The name serves its suffix alone.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Reading readNetworkText(std::string bytes, const ReadOptions& options = {},
                                                 std::string_view name = {});

/// As veq::readWalkNetwork, also of what is compressed by gzip or zstd, which is decompressed
/// twice. \ingroup files
[[nodiscard]] VEQ_EXPORT WalkReading readWalkNetwork(const std::string& path,
                                                     const WalkReadOptions& options = {});

}  // namespace veq::readers
