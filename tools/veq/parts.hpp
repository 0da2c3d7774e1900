/// \file
/// The parts of a network, one file each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// Writes the networks into the directory, which is made if it does not exist, as component-0.xnet
/// and so on, or with the suffix of another format. Says on standard error what of an earlier split
/// is there, and how many files it wrote. Failure where one of the files not to be touched would be
/// overwritten, before anything is written.
void splitInto(const std::string& directory, std::optional<std::size_t> format,
               const std::vector<DerivedNetwork>& networks,
               const std::vector<std::string>& notToTouch);

}  // namespace veq::tool
