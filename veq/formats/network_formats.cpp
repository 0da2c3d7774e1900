// The operations of VEQNetwork that read and write text. What they do is
// done by functions from texts to drafts and from cores to texts.
#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "veq/base/internal/encodings.hpp"
#include "veq/base/internal/file_url.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/internal/whole_files.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/formats/internal/edge_list.hpp"
#include "veq/formats/internal/name_lists.hpp"
#include "veq/formats/internal/pajek.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

using internal::CoreAccess;
using internal::NetworkDraft;
using internal::Team;

/// The path of a URL given to f; a result that means failure where the URL names none.
template <class F>
auto withPathOf(std::string_view url, F f) {
  const std::optional<std::string> path = internal::pathFromUrl(url);
  return path ? f(*path) : decltype(f(*path))();
}

std::optional<NetworkDraft> readXnetText(std::string_view text) {
  Team team(parallelism());
  return internal::isValidUtf8(text, team) ? internal::readXnet(text, team) : std::nullopt;
}

std::optional<NetworkDraft> readXnetFile(std::string_view path) {
  const Result<std::string> bytes = internal::readWholeFile(path);
  return bytes ? readXnetText(internal::withoutByteOrderMark(bytes.value())) : std::nullopt;
}

std::optional<NetworkDraft> readPajekText(std::string_view text) {
  Team team(parallelism());
  return internal::isValidUtf8(text, team) ? internal::readPajek(text, team) : std::nullopt;
}

std::optional<NetworkDraft> readPajekFile(std::string_view path) {
  Result<std::string> bytes = internal::readWholeFile(path);
  if (!bytes) return std::nullopt;
  Team team(parallelism());
  const std::optional<std::string> text =
      internal::decodeAutomatically(std::move(bytes).value(), team);
  return text ? internal::readPajek(*text, team) : std::nullopt;
}

bool areValidUtf8(std::initializer_list<std::string_view> texts) {
  return std::all_of(texts.begin(), texts.end(),
                     [](std::string_view text) { return internal::isValidUtf8(text); });
}

}  // namespace

// xnet

std::string VEQNetwork::formattedStringValue() const {
  return internal::writeXnet(CoreAccess::of(*this)).whole();
}

bool VEQNetwork::writeToFile_atomically(std::string_view path, bool atomically) const {
  internal::NetworkText text = internal::writeXnet(CoreAccess::of(*this));
  return areValidUtf8({text.beforeEdges, text.behindEdges}) && text.writeTo(path, atomically);
}

bool VEQNetwork::writeToURL_atomically(std::string_view url, bool atomically) const {
  return withPathOf(
      url, [&](const std::string& path) { return writeToFile_atomically(path, atomically); });
}

Owned<VEQNetwork> VEQNetwork::initWithNetworkFormattedString(std::string_view text) {
  return CoreAccess::make([text] { return readXnetText(text); });
}

Owned<VEQNetwork> VEQNetwork::initWithContentsOfFile(std::string_view path) {
  return CoreAccess::make([path] { return readXnetFile(path); });
}

Owned<VEQNetwork> VEQNetwork::initWithContentsOfURL(std::string_view url) {
  return CoreAccess::make([url] { return withPathOf(url, readXnetFile); });
}

Shared<VEQNetwork> VEQNetwork::networkWithNetworkFormattedString(std::string_view text) {
  return internal::sharedOrNull(initWithNetworkFormattedString(text));
}

Shared<VEQNetwork> VEQNetwork::networkWithContentsOfFile(std::string_view path) {
  return internal::sharedOrNull(initWithContentsOfFile(path));
}

Shared<VEQNetwork> VEQNetwork::networkWithContentsOfURL(std::string_view url) {
  return internal::sharedOrNull(initWithContentsOfURL(url));
}

Shared<VEQNetwork> VEQNetwork::numberArrayWithContentsOfURL(std::string_view url) {
  return internal::sharedOrNull(initWithContentsOfURL(url));
}

// Pajek

std::string VEQNetwork::pajekFormattedStringValue() const {
  return internal::writePajek(CoreAccess::of(*this)).whole();
}

bool VEQNetwork::writeToPajekFile_atomically(std::string_view path, bool atomically) const {
  internal::NetworkText text = internal::writePajek(CoreAccess::of(*this));
  std::optional<std::string> latin1 = internal::latin1FromUtf8(std::move(text.beforeEdges));
  if (!latin1) return false;
  text.beforeEdges = std::move(*latin1);
  return text.writeTo(path, atomically);
}

bool VEQNetwork::writeToPajekURL_atomically(std::string_view url, bool atomically) const {
  return withPathOf(
      url, [&](const std::string& path) { return writeToPajekFile_atomically(path, atomically); });
}

Owned<VEQNetwork> VEQNetwork::initWithNetworkPajekFormattedString(std::string_view text) {
  return CoreAccess::make([text] { return readPajekText(text); });
}

Owned<VEQNetwork> VEQNetwork::initWithContentsOfPajekFile(std::string_view path) {
  return CoreAccess::make([path] { return readPajekFile(path); });
}

Owned<VEQNetwork> VEQNetwork::initWithContentsOfPajekURL(std::string_view url) {
  return CoreAccess::make([url] { return withPathOf(url, readPajekFile); });
}

Shared<VEQNetwork> VEQNetwork::networkWithNetworkPajekFormattedString(std::string_view text) {
  return internal::sharedOrNull(initWithNetworkPajekFormattedString(text));
}

Shared<VEQNetwork> VEQNetwork::networkWithContentsOfPajekFile(std::string_view path) {
  return internal::sharedOrNull(initWithContentsOfPajekFile(path));
}

Shared<VEQNetwork> VEQNetwork::networkWithContentsOfPajekURL(std::string_view url) {
  return internal::sharedOrNull(initWithContentsOfPajekURL(url));
}

Shared<VEQNetwork> VEQNetwork::numverArrayWithContentsOfPajekURL(std::string_view url) {
  return internal::sharedOrNull(initWithContentsOfPajekURL(url));
}

// Edge lists

Owned<VEQNetwork> VEQNetwork::initWithEdgesListString_directed(std::optional<std::string_view> text,
                                                               bool directed) {
  return CoreAccess::make([&]() -> std::optional<NetworkDraft> {
    if (!text || !internal::isValidUtf8(*text)) return std::nullopt;
    return internal::readEdgeList(*text, directed);
  });
}

Shared<VEQNetwork> VEQNetwork::networkWithEdgesListString_directed(
    std::optional<std::string_view> text, bool directed) {
  return internal::sharedOrNull(initWithEdgesListString_directed(text, directed));
}

std::string VEQNetwork::edgesListFormattedStringValue() const {
  return internal::writeEdgeList(CoreAccess::of(*this)).whole();
}

// The text is digits and blanks alone, the same bytes in ISO-8859-1.
bool VEQNetwork::writeToEdgesFile_atomically(std::string_view path, bool atomically) const {
  return internal::writeEdgeList(CoreAccess::of(*this)).writeTo(path, atomically);
}

bool VEQNetwork::writeToEdgesURL_atomically(std::string_view url, bool atomically) const {
  return withPathOf(
      url, [&](const std::string& path) { return writeToEdgesFile_atomically(path, atomically); });
}

// Construction from strings

Owned<VEQNetwork> VEQNetwork::initWithVerticesString_edgesString(std::string_view vertices,
                                                                 std::string_view edges) {
  return initWithVerticesString_edgesString_directed(vertices, edges, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVerticesString_edgesString_directed(std::string_view vertices,
                                                                          std::string_view edges,
                                                                          bool directed) {
  return initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
      vertices, edges, directed, nullptr, nullptr);
}

Owned<VEQNetwork>
VEQNetwork::initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
    std::string_view vertices, std::string_view edges, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return CoreAccess::make([&]() -> std::optional<NetworkDraft> {
    if (!areValidUtf8({vertices, edges})) return std::nullopt;
    return internal::readEdgeNames(vertices, edges, directed, {verticesWeights, edgesWeights});
  });
}

Owned<VEQNetwork> VEQNetwork::initWithVerticesString_fromLinksString_toLinksString(
    std::optional<std::string_view> vertices, std::string_view from, std::string_view to) {
  return initWithVerticesString_fromLinksString_toLinksString_directed(vertices, from, to, false);
}

Owned<VEQNetwork> VEQNetwork::initWithVerticesString_fromLinksString_toLinksString_directed(
    std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
    bool /*directed*/) {
  return initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
      vertices, from, to, false, nullptr, nullptr);
}

Owned<VEQNetwork> VEQNetwork::
    initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
        std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
        bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return CoreAccess::make([&]() -> std::optional<NetworkDraft> {
    if (!areValidUtf8({vertices.value_or(""), from, to})) return std::nullopt;
    return internal::readLinkNames(vertices, from, to, directed, {verticesWeights, edgesWeights});
  });
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesString_edgesString(std::string_view vertices,
                                                                     std::string_view edges) {
  return networkWithVerticesString_edgesString_directed(vertices, edges, false);
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesString_edgesString_directed(
    std::string_view vertices, std::string_view edges, bool directed) {
  return networkWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
      vertices, edges, directed, nullptr, nullptr);
}

// The weights of the vertices count for both, as published.
Shared<VEQNetwork>
VEQNetwork::networkWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
    std::string_view vertices, std::string_view edges, bool directed,
    const VEQNumberArray* verticesWeights, const VEQNumberArray* /*edgesWeights*/) {
  return internal::sharedOrNull(
      initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
          vertices, edges, directed, verticesWeights, verticesWeights));
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesString_fromLinksString_toLinksString(
    std::optional<std::string_view> vertices, std::string_view from, std::string_view to) {
  return networkWithVerticesString_fromLinksString_toLinksString_directed(vertices, from, to,
                                                                          false);
}

Shared<VEQNetwork> VEQNetwork::networkWithVerticesString_fromLinksString_toLinksString_directed(
    std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
    bool /*directed*/) {
  return networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
      vertices, from, to, false, nullptr, nullptr);
}

Shared<VEQNetwork> VEQNetwork::
    networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
        std::optional<std::string_view> vertices, std::string_view from, std::string_view to,
        bool directed, const VEQNumberArray* verticesWeights, const VEQNumberArray* edgesWeights) {
  return internal::sharedOrNull(
      initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
          vertices, from, to, directed, verticesWeights, edgesWeights));
}

}  // namespace veq
