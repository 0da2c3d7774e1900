/// \file
/// Bytes in and out: files, and standard input and output, which "-" stands for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

inline constexpr std::string_view kStandardInput = "standard input";
inline constexpr std::string_view kStandardOutput = "standard output";

[[nodiscard]] bool isStandardStream(std::string_view file);

/// \name What messages call a file
/// @{
[[nodiscard]] std::string inputName(const std::string& file);
[[nodiscard]] std::string outputName(const std::string& file);
/// @}

/// All bytes; a Failure tells the system's reason.
[[nodiscard]] std::string bytesIn(const std::string& file);

/// All lines, without their ends, which may be those of another system; a last one need not end.
[[nodiscard]] std::vector<std::string> linesIn(const std::string& file);

/// Writes so that at every moment the old file or the new one is whole; standard output takes the
/// bytes as they come. Failure, and the old file stays, where it cannot be.
void writeTo(const std::string& file, const ByteSource& source);
void writeTo(const std::string& file, std::string_view bytes);

/// Failure where writeTo() would fail before its first byte, so that nobody computes for an hour in
/// vain.
void requireWritable(const std::string& file);

/// Failure where standard output did not take all that was printed.
void flushStandardOutput();

}  // namespace veq::tool
