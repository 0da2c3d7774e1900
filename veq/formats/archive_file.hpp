/// \file
/// Archives in files.
#pragma once

#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq {

/// Writes an archive of the network; false where the file cannot be written. Atomically, the old
/// file is then whole. std::invalid_argument, before the file is touched, where a property cannot
/// be archived.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT bool writeArchiveToFile(const VEQNetwork& network, std::string_view path,
                                                 bool atomically);

/// Null where the file cannot be read or holds no archive of a network.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Owned<VEQNetwork> networkWithArchiveFile(std::string_view path);

}  // namespace veq
