#include <fstream>

#include "veq/base/files.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/formats/writing.hpp"
#include "veq_tasks.hpp"
#ifdef VEQ_WITH_READERS
#include "veq/readers/reading.hpp"
#else
#include "veq/formats/reading.hpp"
#endif

namespace bench {
namespace {

#ifdef VEQ_WITH_READERS
namespace reader = veq::readers;
#else
namespace reader = veq;
#endif

using veq::Owned;
using veq::VEQKeyedArchiver;
using veq::VEQKeyedUnarchiver;
using veq::VEQNetwork;
using veq::VEQNumberArray;

std::uint64_t sizeOf(const VEQNetwork& network) {
  return network.countVertices() + network.countEdges();
}

template <class Read>
bool measureReading(const Arguments& arguments, Measurement& measurement, Read read) {
  const std::string path = arguments.text("file");
  measurement.time([&] { return read(path); },
                   [](const auto& network) { return network ? sizeOf(*network) : 0; });
  measurement.addMegabytesPerSecond(bytesOfFile(path));
  return true;
}

/// In place, as the peers write; the network has names and weights.
template <class Write>
bool measureWriting(const Arguments& arguments, Measurement& measurement, Write write) {
  const auto network = namedNetworkOf(edgesOf(arguments, true));
  const std::string path = arguments.text("out");
  measurement.time([&] { return write(*network, path); }, [](bool written) { return written; });
  measurement.addMegabytesPerSecond(bytesOfFile(path));
  return true;
}

std::string contentsOf(const std::string& path) {
  std::string text(static_cast<std::size_t>(bytesOfFile(path)), '\0');
  std::ifstream(path, std::ios::binary)
      .read(text.data(), static_cast<std::streamsize>(text.size()));
  return text;
}

bool readPajek(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, VEQNetwork::initWithContentsOfPajekFile);
}
bool writePajek(const Arguments& arguments, Measurement& measurement) {
  return measureWriting(arguments, measurement, [](const VEQNetwork& network, const auto& path) {
    return network.writeToPajekFile_atomically(path, false);
  });
}

bool readXnet(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, VEQNetwork::initWithContentsOfFile);
}
bool writeXnet(const Arguments& arguments, Measurement& measurement) {
  return measureWriting(arguments, measurement, [](const VEQNetwork& network, const auto& path) {
    return network.writeToFile_atomically(path, false);
  });
}

/// The interface takes the text, so reading the file is part of the work.
bool readEdgeList(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](const std::string& path) {
    return VEQNetwork::initWithEdgesListString_directed(contentsOf(path), false);
  });
}
bool writeEdgeList(const Arguments& arguments, Measurement& measurement) {
  return measureWriting(arguments, measurement, [](const VEQNetwork& network, const auto& path) {
    return network.writeToEdgesFile_atomically(path, false);
  });
}

/// By the reader that takes any file, also GraphML where that was built.
bool readAny(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](const std::string& path) {
    return reader::readNetwork(path).value().published();
  });
}

/// As the suffix says, with names and weights or without both.
bool writeAny(const Arguments& arguments, Measurement& measurement) {
  const bool named = arguments.count("named", 0) != 0;
  const Edges edges = edgesOf(arguments, named);
  veq::Shared<VEQNetwork> network = named ? namedNetworkOf(edges) : networkOf(edges);
  const std::string path = arguments.text("out");
  measurement.time([&] { return veq::writeNetwork(veq::Network(network), path).hasValue(); },
                   [](bool written) { return written; });
  measurement.addMegabytesPerSecond(bytesOfFile(path));
  return true;
}

Owned<VEQNumberArray> numbersOf(const Arguments& arguments) {
  return numberArrayOf(std::vector<std::uint64_t>(arguments.count("n", 10'000'000), 5));
}

bool encodeNumbers(const Arguments& arguments, Measurement& measurement) {
  const auto numbers = numbersOf(arguments);
  measurement.time(
      [&] {
        auto archiver = std::make_unique<VEQKeyedArchiver>();
        archiver->encodeNumberArray(*numbers, "numbers");
        return archiver;
      },
      [](const auto& archiver) { return archiver->bytes().size(); });
  measurement.addMegabytesPerSecond(8 * static_cast<double>(numbers->count()));
  return true;
}

bool decodeNumbers(const Arguments& arguments, Measurement& measurement) {
  const auto numbers = numbersOf(arguments);
  VEQKeyedArchiver archiver;
  archiver.encodeNumberArray(*numbers, "numbers");
  measurement.time(
      [&] { return VEQKeyedUnarchiver(archiver.bytes()).decodeNumberArray("numbers"); },
      [](const auto& decoded) { return decoded->count(); });
  measurement.addMegabytesPerSecond(8 * static_cast<double>(numbers->count()));
  return true;
}

bool writeArchive(const Arguments& arguments, Measurement& measurement) {
  const auto network = networkOf(edgesOf(arguments));
  measurement.time(
      [&] {
        auto archiver = std::make_unique<VEQKeyedArchiver>();
        network->encodeWithCoder(*archiver);
        return archiver;
      },
      [](const auto& archiver) { return archiver->bytes().size(); });
  return true;
}

bool readArchive(const Arguments& arguments, Measurement& measurement) {
  VEQKeyedArchiver archiver;
  networkOf(edgesOf(arguments))->encodeWithCoder(archiver);
  measurement.time(
      [&] {
        VEQKeyedUnarchiver unarchiver(archiver.bytes());
        return VEQNetwork::initWithCoder(unarchiver);
      },
      [](const auto& network) { return network->countEdges(); });
  return true;
}

/// A file of the published kind.
bool writeArchiveFile(const Arguments& arguments, Measurement& measurement) {
  VEQKeyedArchiver archiver;
  namedNetworkOf(edgesOf(arguments, true))->encodeWithCoder(archiver);
  const std::string path = arguments.text("out");
  measurement.time([&] { return veq::writeFile(path, archiver.bytes()).hasValue(); },
                   [](bool written) { return written; });
  return true;
}

bool readArchiveFile(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](const std::string& path) {
    const std::string bytes = contentsOf(path);
    VEQKeyedUnarchiver unarchiver(bytes);
    return VEQNetwork::initWithCoder(unarchiver);
  });
}

}  // namespace

std::vector<Task> formatTasks() {
  return {{"read_pajek", readPajek},
          {"write_pajek", writePajek},
          {"read_xnet", readXnet},
          {"write_xnet", writeXnet},
          {"read_edges", readEdgeList},
          {"write_edges", writeEdgeList},
          {"read_any", readAny},
          {"write_any", writeAny},
          {"encode_numbers", encodeNumbers},
          {"decode_numbers", decodeNumbers},
          {"write_archive", writeArchive},
          {"read_archive", readArchive},
          {"write_archive_file", writeArchiveFile},
          {"read_archive_file", readArchiveFile}};
}

}  // namespace bench
