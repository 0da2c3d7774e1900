/// \file
/// Archives in files.
#pragma once

#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/network/network.hpp"

namespace veq {

/// Writes an archive of the network as encodeWithCoder() makes it, with what that does not keep;
/// writeNetwork() writes one that keeps everything. False where the file cannot be written.
/// Atomically, the old file is then whole. std::invalid_argument, before the file is touched, where
/// a property cannot be archived. \ingroup files
[[nodiscard]] VEQ_EXPORT bool writeArchiveToFile(const VEQNetwork& network, std::string_view path,
                                                 bool atomically);

/// Reads archives of either kind, the first as initWithCoder() takes it. Null where the file cannot
/// be read or holds no archive of a network.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Owned<VEQNetwork> networkWithArchiveFile(std::string_view path);

}  // namespace veq
