/// \file
/// What every way of reading ends in.
#pragma once

#include <cstdint>
#include <functional>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/internal/byte_stream.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/reading.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The network of a draft, or why there is none.
[[nodiscard]] VEQ_EXPORT Result<Network> networkOfDraft(NetworkDraft draft, ReadContext& context);

/// What `read` makes, or why it is nothing: whatever it throws is the error.
template <class Read>
[[nodiscard]] auto readOrWhyNot(Read read) -> decltype(read()) {
  try {
    return read();
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return Error(ErrorKind::kMemory, "not enough memory");
  } catch (const std::length_error&) {
    return Error(ErrorKind::kMemory, "not enough memory");
  } catch (...) {
    return endOfWork();
  }
}

/// Calls `read` with a context of so many bytes and the format that was asked for, which it
/// replaces by the one that it recognises.
[[nodiscard]] VEQ_EXPORT Reading guardedReading(
    const ReadOptions& options, std::uint64_t bytes,
    const std::function<Result<Network>(ReadContext&, std::optional<FileFormat>&)>& read);

/// Reads any format that the core knows. The name serves its suffix alone.
[[nodiscard]] VEQ_EXPORT Reading readStream(ByteStream& bytes, const ReadOptions& options,
                                            std::string_view name);

}  // namespace veq::internal
