#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "veq/formats/archive_file.hpp"
#include "veq/network/network.hpp"

namespace veq::test {

/// Each way to write a network into a file.
struct Writer {
  const char* name;
  bool (*write)(const VEQNetwork&, const std::string& path, bool atomically);
};

inline const Writer kWriters[] = {
    {"xnet", [](const VEQNetwork& n, const std::string& path,
                bool atomically) { return n.writeToFile_atomically(path, atomically); }},
    {"xnet_url", [](const VEQNetwork& n, const std::string& path,
                    bool atomically) { return n.writeToURL_atomically(path, atomically); }},
    {"pajek", [](const VEQNetwork& n, const std::string& path,
                 bool atomically) { return n.writeToPajekFile_atomically(path, atomically); }},
    {"pajek_url", [](const VEQNetwork& n, const std::string& path,
                     bool atomically) { return n.writeToPajekURL_atomically(path, atomically); }},
    {"edges", [](const VEQNetwork& n, const std::string& path,
                 bool atomically) { return n.writeToEdgesFile_atomically(path, atomically); }},
    {"edges_url", [](const VEQNetwork& n, const std::string& path,
                     bool atomically) { return n.writeToEdgesURL_atomically(path, atomically); }},
    {"archive", [](const VEQNetwork& n, const std::string& path,
                   bool atomically) { return writeArchiveToFile(n, path, atomically); }},
};

inline void PrintTo(const Writer& writer, std::ostream* out) { *out << writer.name; }

inline std::string nameOfWriter(const testing::TestParamInfo<Writer>& info) {
  return info.param.name;
}

}  // namespace veq::test
