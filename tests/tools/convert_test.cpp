#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/program.hpp"

namespace veq::test::convert_test {
namespace {

const std::string kLesMis = VEQ_DATA "/lesmis.xnet";

/// What converting makes of a file: the notes, each without "veq: FILE: ", and the result.
struct Conversion {
  int exitCode;
  std::string notes;
  std::string result;
};

/// Converts in the directory, where the files have the given names.
Conversion convert(const TemporaryDirectory& directory, const std::string& from,
                   const std::string& to, const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments{"convert", directory.path(from), directory.path(to)};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ProgramRun run = runVeq(arguments);
  EXPECT_EQ(run.output, "");
  std::string notes = run.errors;
  const std::string folder = directory.path("");
  for (std::size_t at = notes.find(folder); at != std::string::npos; at = notes.find(folder)) {
    notes.erase(at, folder.size());
  }
  return {run.exitCode, notes, contentsOf(directory.path(to))};
}

/// How the reason ends where GraphML and archives would do.
const std::string kKept = "; .graphml and .veqa keep everything";
const std::string kLoses =
    ": not written, because of what it loses" + kKept + "; --lossy writes it all the same\n";

void expectRefused(const Conversion& conversion, const TemporaryDirectory& directory,
                   const std::string& output, const std::string& notes) {
  EXPECT_EQ(conversion.exitCode, 1);
  EXPECT_EQ(conversion.notes, notes);
  for (const std::string& name : directory.names()) EXPECT_NE(name, output);
}

TEST(ConvertCommand, PajekKeepsNamesAndWeights) {
  const TemporaryDirectory directory;
  directory.write("l.xnet", contentsOf(kLesMis));
  Conversion conversion = convert(directory, "l.xnet", "l.NET");
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes, "");
  EXPECT_EQ(conversion.result.substr(0, 33), "*Vertices 77\r\n1 \"Napoleon\"\r\n2 \"My");
  conversion = convert(directory, "l.NET", "back.xnet");
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes, "");
  EXPECT_EQ(conversion.result, contentsOf(kLesMis));
}

TEST(ConvertCommand, AnArchiveWithBothKindsOfWeightsKeepsEverything) {
  const TemporaryDirectory directory;
  const std::string text =
      "#vertices 2 weighted\n\"a\" 1.500000\n\"b\" 2.500000\n#edges weighted directed\n"
      "1 0 0.250000\n#v \"age\" n\n7\n8\n";
  directory.write("n.xnet", text);
  Conversion conversion = convert(directory, "n.xnet", "n.veqa");
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes, "");
  conversion = convert(directory, "n.veqa", "back.xnet");
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes, "");
  EXPECT_EQ(conversion.result, text);
}

TEST(ConvertCommand, AnArchiveKeepsWeightsOfEitherKindAndTheLastVertices) {
  const TemporaryDirectory directory;
  for (const std::string text :
       {"#vertices 4 weighted\n2.000000\n3.000000\n4.000000\n5.000000\n#edges nonweighted "
        "undirected\n0 1\n",
        "#vertices 4 nonweighted\n#edges weighted directed\n0 1 0.500000\n"}) {
    directory.write("n.xnet", text);
    const Conversion there = convert(directory, "n.xnet", "n.veqa");
    EXPECT_EQ(there.exitCode, 0);
    EXPECT_EQ(there.notes, "");
    const Conversion back = convert(directory, "n.veqa", "back.xnet");
    EXPECT_EQ(back.exitCode, 0);
    EXPECT_EQ(back.notes, "");
    EXPECT_EQ(back.result, text);
  }
}

TEST(ConvertCommand, EdgeColumnsComeBackFromXnetAsVertexColumns) {
  const TemporaryDirectory directory;
  directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n#e \"since\" n\n1999\n");
  const std::string notes =
      "veq: m.xnet: the edge property \"since\" comes back as a vertex property\n";
  expectRefused(convert(directory, "n.xnet", "m.xnet"), directory, "m.xnet",
                notes + "veq: m.xnet" + kLoses);
  const Conversion conversion = convert(directory, "n.xnet", "m.xnet", {"--lossy"});
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes, notes);
  EXPECT_EQ(conversion.result,
            "#vertices 2 nonweighted\n#edges nonweighted undirected\n0 1\n#v \"since\" n\n1999\n");
}

TEST(ConvertCommand, PajekLosesWeightsOfVerticesAndOtherProperties) {
  const TemporaryDirectory directory;
  directory.write("n.xnet",
                  "#vertices 2 weighted\n\"a\" 2\n\"b\" 3\n#edges weighted\n0 1 1\n"
                  "#v \"age\" n\n7\n8\n#e \"since\" n\n1999\n");
  const Conversion conversion = convert(directory, "n.xnet", "n.net", {"--lossy"});
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes,
            "veq: n.net: the weights of vertices are lost\n"
            "veq: n.net: edges come back without weights, since all are 1\n"
            "veq: n.net: the vertex property \"age\" is lost\n"
            "veq: n.net: the edge property \"since\" is lost\n");
  EXPECT_EQ(conversion.result, "*Vertices 2\r\n1 \"a\"\r\n2 \"b\"\r\n*Edges\r\n1 2 1.000000\r\n");
}

TEST(ConvertCommand, PajekCannotHoldNamesOutsideLatin1AndLeavesTheOldFile) {
  const TemporaryDirectory directory;
  directory.write("n.xnet", "#vertices 1\n\"\xe2\x82\xac\"\n");  // the euro sign
  directory.write("n.net", "old");
  const Conversion conversion = convert(directory, "n.xnet", "n.net");
  EXPECT_EQ(conversion.exitCode, 1);
  EXPECT_EQ(
      conversion.notes,
      "veq: n.net: not written, because Pajek cannot hold a name beyond ISO-8859-1" + kKept + "\n");
  EXPECT_EQ(conversion.result, "old");
}

TEST(ConvertCommand, PajekNamesThatLookLikeUtf8AreNotLostInSilence) {
  const TemporaryDirectory directory;
  // In ISO-8859-1 the two letters are the bytes C3 A9, which is how UTF-8 writes another one.
  directory.write("n.xnet", "#vertices 2\n\"\xc3\x83\xc2\xa9\"\n\"b\"\n#edges\n0 1\n");
  Conversion conversion = convert(directory, "n.xnet", "n.net", {"--lossy"});
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes,
            "veq: n.net: the vertex property \"Name\" changes in 1 of 2 values\n");
  conversion = convert(directory, "n.net", "back.xnet");
  EXPECT_EQ(conversion.result,
            "#vertices 2 nonweighted\n\"\xc3\xa9\"\n\"b\"\n#edges nonweighted undirected\n0 1\n");
}

TEST(ConvertCommand, AnEmptyNameFitsPajekButNotXnet) {
  const TemporaryDirectory directory;
  directory.write("n.net", "*Vertices 2\n1 \"a\"\n2 \"\"\n*Edges\n1 2\n");
  expectRefused(
      convert(directory, "n.net", "n.xnet"), directory, "n.xnet",
      "veq: n.xnet: not written, because 1 vertex has no name, which xnet cannot hold where "
      "others have one" +
          kKept + "; --number-names gives names to vertices that have none\n");
  for (const std::string option : {"--number-names", "--lossy"}) {
    const Conversion named = convert(directory, "n.net", "n.xnet", {option});
    EXPECT_EQ(named.exitCode, 0);
    EXPECT_EQ(named.notes, "veq: n.xnet: 1 vertex without a name is called by its number\n");
    EXPECT_EQ(named.result,
              "#vertices 2 nonweighted\n\"a\"\n\"1\"\n#edges nonweighted undirected\n0 1\n");
  }
}

TEST(ConvertCommand, IdsOfAListBecomeNamesWhereTheFormatHasNothingElse) {
  const TemporaryDirectory directory;
  directory.write("n.el", "10 20\n20 30\n");
  expectRefused(
      convert(directory, "n.el", "n.net"), directory, "n.net",
      "veq: n.net: the vertex property \"Id\" is lost\n"
      "veq: n.net: not written, because of what it loses" +
          kKept +
          "; --number-names gives names to vertices that have none; --lossy writes it all "
          "the same\n");
  const Conversion named = convert(directory, "n.el", "n.net", {"--number-names"});
  EXPECT_EQ(named.exitCode, 0);
  EXPECT_EQ(named.notes,
            "veq: n.net: 3 vertices without a name are called by their numbers\n"
            "veq: n.net: the vertex property \"Id\" comes back as names\n");
  EXPECT_EQ(named.result,
            "*Vertices 3\r\n1 \"10\"\r\n2 \"20\"\r\n3 \"30\"\r\n*Edges\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(ConvertCommand, ATableOfVerticesKeepsWhatTheEdgesDoNot) {
  const TemporaryDirectory directory;
  directory.write("n.xnet",
                  "#vertices 3 weighted\n\"a\" 1\n\"b\" 2\n\"c\" 3\n#edges directed\n0 1\n"
                  "#v \"age\" n\n7\n8\n9\n");
  expectRefused(convert(directory, "n.xnet", "n.csv"), directory, "n.csv",
                "veq: n.csv: 1 vertex without edges is lost\n"
                "veq: n.csv: the weights of vertices are lost\n"
                "veq: n.csv: the vertex property \"age\" is lost\n"
                "veq: n.csv" +
                    kLoses);
  const Conversion both =
      convert(directory, "n.xnet", "n.csv", {"--vertices", directory.path("v.csv")});
  EXPECT_EQ(both.exitCode, 0);
  EXPECT_EQ(both.notes, "");
  EXPECT_EQ(both.result, "Source,Target,Type\na,b,Directed\n");
  EXPECT_EQ(contentsOf(directory.path("v.csv")),
            "Id,Weight,Label,age\na,1,a,7\nb,2,b,8\nc,3,c,9\n");
  const ProgramRun wrong = runVeq({"convert", directory.path("n.xnet"), directory.path("n.gml"),
                                   "--vertices", directory.path("v.csv")});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_EQ(wrong.errors, "veq: --vertices is for tables, and " + directory.path("n.gml") +
                              " is none (see veq convert --help)\n");
}

TEST(ConvertCommand, TextsThatTheFormatSpellsOtherwiseAreNotLostInSilence) {
  const TemporaryDirectory directory;
  directory.write("n.net", "*Vertices 2\n1 \"a<quote>b\"\n2 \"c<<newline>quote>d\"\n*Edges\n1 2\n");
  // The first name holds a quote, which survives; the second one a line feed inside "<quote>".
  EXPECT_EQ(convert(directory, "n.net", "n.xnet").notes, "");
  directory.write("w.edges", "a\xe2\x80\xa8z b\n");  // a line separator inside a name
  const Conversion conversion = convert(directory, "w.edges", "w.xnet", {"--lossy"});
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes,
            "veq: w.xnet: the vertex property \"Name\" changes in 1 of 2 values\n");
}

TEST(ConvertCommand, EdgeListsHoldIndicesAndWeightsAlone) {
  const TemporaryDirectory directory;
  directory.write("n.xnet",
                  "#vertices 5 weighted\n\"a\" 1\n\"b\" 1\n\"c\" 1\n\"d\" 1\n\"e\" 2\n"
                  "#edges weighted directed\n2 1 0.5\n1 3 1e-7\n#e \"since\" n\n1\n2\n");
  const Conversion conversion = convert(directory, "n.xnet", "n.edges", {"--lossy"});
  EXPECT_EQ(conversion.exitCode, 0);
  EXPECT_EQ(conversion.notes,
            "veq: n.edges: the direction of edges is lost without --directed\n"
            "veq: n.edges: the weights of edges change for 1 of 2\n"
            "veq: n.edges: the edge property \"since\" is lost\n"
            "veq: n.edges: 2 vertices without edges are lost\n"
            "veq: n.edges: vertices come back with other indices\n"
            "veq: n.edges: the weights of vertices are lost\n"
            "veq: n.edges: the vertex property \"Name\" is lost\n");
  EXPECT_EQ(conversion.result, "2 1 0.500000\r\n1 3 0.000000\r\n");
}

TEST(ConvertCommand, AnEdgeListWithoutEdgesIsNotWritten) {
  const TemporaryDirectory directory;
  directory.write("n.xnet", "#vertices 3\n");
  expectRefused(convert(directory, "n.xnet", "n.txt"), directory, "n.txt",
                "veq: n.txt: not written, because a list without edges could not be read back" +
                    kKept + "\n");
}

TEST(ConvertCommand, DirectionIsOnlyForEdgeLists) {
  const TemporaryDirectory directory;
  directory.write("n.xnet", "#vertices 2\n");
  const ProgramRun run =
      runVeq({"convert", "--directed", directory.path("n.xnet"), directory.path("m.xnet")});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.errors, "veq: --directed is for edge lists, and " + directory.path("n.xnet") +
                            " is none (see veq convert --help)\n");
}

TEST(ConvertCommand, StandardStreamsAreFilesWithoutNames) {
  const TemporaryDirectory directory;
  const ProgramRun run = runShell("printf 'a b\\nb c\\n' | '" VEQ_PROGRAM
                                  "' convert - - --from list --to pajek --directed");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "*Vertices 3\r\n1 \"a\"\r\n2 \"b\"\r\n3 \"c\"\r\n*Arcs\r\n1 2 1.0\r\n2 3 1.0\r\n");
}

TEST(ConvertCommand, WhatIsReadIsNeverOverwritten) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("n.xnet", "#vertices 2\n#edges\n0 1\n");
  std::filesystem::create_symlink(file, directory.path("link.xnet"));
  std::filesystem::create_hard_link(file, directory.path("hard.xnet"));
  const std::string folder =
      std::filesystem::path(directory.path("")).parent_path().filename().string();
  const std::vector<std::string> names{"n.xnet", "link.xnet", "hard.xnet",
                                       "../" + folder + "/n.xnet"};
  for (const std::string& name : names) {
    const ProgramRun run = runVeq({"convert", file, directory.path(name)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors,
              "veq: OUT would overwrite " + file + ", which is read (see veq convert --help)\n");
  }
  EXPECT_EQ(contentsOf(file), "#vertices 2\n#edges\n0 1\n");
}

TEST(ConvertCommand, OptionsNameFormatsThatSuffixesDoNot) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("list.dat", "a b\n");
  const ProgramRun run =
      runVeq({"convert", file, directory.path("n.out"), "--from", "list", "--to", "xnet"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(contentsOf(directory.path("n.out")),
            "#vertices 2 nonweighted\n\"a\"\n\"b\"\n#edges nonweighted undirected\n0 1\n");
}

TEST(ConvertCommand, PajekIsReadInEveryEncodingOfFiles) {
  const TemporaryDirectory directory;
  const std::string xnet = "#vertices 1 nonweighted\n\"\xc3\xa9\"\n#edges nonweighted undirected\n";
  const std::string utf16 = "*Vertices 1\n1 \"\xe9\"\n";
  std::string wide = "\xff\xfe";
  for (const char byte : utf16) wide += {byte, '\0'};
  for (const std::string& bytes : {std::string("*Vertices 1\n1 \"\xe9\"\n"), wide,
                                   std::string("*Vertices 1\n1 \"\xc3\xa9\"\n")}) {
    directory.write("n.net", bytes);
    const Conversion conversion = convert(directory, "n.net", "n.xnet");
    EXPECT_EQ(conversion.exitCode, 0);
    EXPECT_EQ(conversion.result, xnet);
  }
}

TEST(ConvertCommand, EachFormatSaysWhatTheFileIsNot) {
  const TemporaryDirectory directory;
  directory.write("x.xnet", "#vertices x\n");
  directory.write("x.net", "*Vertices 1\n5 \"a\"\n*Edges\n1 9\n");
  for (const std::string name : {"x.xnet", "none.xnet"}) {
    const Conversion conversion = convert(directory, name, "y.xnet");
    EXPECT_EQ(conversion.exitCode, 1);
    EXPECT_EQ(conversion.notes,
              name == "x.xnet" ? "veq: x.xnet:1: no number of vertices, or an empty name or key\n"
                               : "veq: none.xnet: No such file or directory\n");
  }
  const std::vector<std::string> names = directory.names();
  EXPECT_EQ(std::count(names.begin(), names.end(), "y.xnet"), 0);
}

TEST(ConvertCommand, WritesFormatsForOtherPrograms) {
  const TemporaryDirectory directory;
  directory.write("n.xnet",
                  "#vertices 3\n\"a\"\n\"b\"\n\"c\"\n#edges weighted directed\n0 1 0.5\n");
  const Conversion csv = convert(directory, "n.xnet", "n.csv", {"--lossy"});
  EXPECT_EQ(csv.exitCode, 0);
  EXPECT_EQ(csv.notes, "veq: n.csv: 1 vertex without edges is lost\n");
  for (const std::string name : {"n.gml", "n.graphml"}) {
    EXPECT_EQ(convert(directory, "n.xnet", name).exitCode, 0) << name;
  }
  const Conversion matrix = convert(directory, "n.xnet", "n.mtx");
  EXPECT_EQ(matrix.exitCode, 1);
  EXPECT_EQ(matrix.notes, "veq: n.mtx: the vertex property \"Name\" is lost\nveq: n.mtx" + kLoses);
  const Conversion back = convert(directory, "n.gml", "back.xnet");
  EXPECT_EQ(back.exitCode, 0);
  EXPECT_NE(back.result.find("\n#edges weighted directed\n0 1 0.500000\n"), std::string::npos)
      << back.result;
}

}  // namespace
}  // namespace veq::test::convert_test
