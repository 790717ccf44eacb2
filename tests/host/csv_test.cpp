#include "host/csv.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace zq::host {
namespace {

using Fields = std::vector<std::string>;

std::vector<Fields> fieldsOf(const std::vector<CsvRow>& rows) {
  std::vector<Fields> fields;
  for (const CsvRow& row : rows) {
    EXPECT_EQ(row.problem, "") << "line " << row.line;
    fields.push_back(row.fields);
  }
  return fields;
}

TEST(Csv, RowsEndWithAnyLineEndAndTheLastOneNeedsNone) {
  EXPECT_EQ(fieldsOf(parseCsv("a,b\nc,d\r\ne,f\rg,h", ',')),
            (std::vector<Fields>{{"a", "b"}, {"c", "d"}, {"e", "f"}, {"g", "h"}}));
}

TEST(Csv, BlankLinesAreNoRowsButAreCounted) {
  const auto rows = parseCsv("\na,b\n\r\n\nc,d\n\n", ',');
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].line, 2);
  EXPECT_EQ(rows[1].line, 5);
}

TEST(Csv, AQuotedFieldMayHoldSeparatorsQuotesAndLineEnds) {
  const auto rows = parseCsv("\"a,\"\"b\"\"\r\nc\",d\ne,\"\"\n", ',');
  EXPECT_EQ(fieldsOf(rows), (std::vector<Fields>{{"a,\"b\"\r\nc", "d"}, {"e", ""}}));
  EXPECT_EQ(rows[1].line, 3) << "the line ends of the first row's field count";
}

TEST(Csv, AnotherSeparatorLeavesCommasAlone) {
  EXPECT_EQ(fieldsOf(parseCsv("a,b;c\n", ';')), (std::vector<Fields>{{"a,b", "c"}}));
  EXPECT_EQ(fieldsOf(parseCsv("a;b\tc\n", '\t')), (std::vector<Fields>{{"a;b", "c"}}));
}

TEST(Csv, BlanksBelongToTheField) {
  EXPECT_EQ(fieldsOf(parseCsv(" a , b\n", ',')), (std::vector<Fields>{{" a ", " b"}}));
}

TEST(Csv, ARowWithBrokenQuotingIsToldAndTheNextOneIsRead) {
  const auto rows = parseCsv("a,b\"c,d\n\"e\"f,g\n\"h\",i\n", ',');
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_NE(rows[0].problem.find("inside a field"), std::string::npos) << rows[0].problem;
  EXPECT_NE(rows[1].problem.find("follows a closing"), std::string::npos) << rows[1].problem;
  EXPECT_EQ(rows[2].problem, "");
  EXPECT_EQ(rows[2].fields, (Fields{"h", "i"}));
}

TEST(Csv, AQuoteThatIsNeverClosedSpoilsItsOwnRowOnly) {
  const auto rows = parseCsv("a,b\nc,\"d\ne,f\ng,h\n", ',');
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[1].line, 2);
  EXPECT_NE(rows[1].problem.find("never closed"), std::string::npos) << rows[1].problem;
  EXPECT_EQ(rows[2].line, 3);
  EXPECT_EQ(rows[2].fields, (Fields{"e", "f"}));
  EXPECT_EQ(rows[3].fields, (Fields{"g", "h"}));
}

TEST(Csv, NothingIsNoRow) {
  EXPECT_TRUE(parseCsv("", ',').empty());
  EXPECT_TRUE(parseCsv("\n\r\n", ',').empty());
}

TEST(Csv, QuotesWhatNeedsIt) {
  EXPECT_EQ(csvLine({"plain", "a,b", "a\"b", "a\nb", "", "a;b"}), "plain,\"a,b\",\"a\"\"b\",\"a\nb\",,\"a;b\"\n");
}

// Fields of the characters that matter, so that all ways in which they meet come up.
TEST(Csv, WhatIsWrittenIsReadAgain) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const std::vector<std::string> pieces{",", ";", "\t", "\"", "\n", "\r", "\r\n", " ", "a", "ü", "日"};
    std::vector<Fields> table(random() % 6 + 1);
    std::string text;
    for (Fields& row : table) {
      row.resize(random() % 4 + 1);
      for (std::string& field : row) {
        for (auto length = random() % 6; length > 0; --length) field += pieces[random() % pieces.size()];
      }
      text += csvLine(row);
    }
    EXPECT_EQ(fieldsOf(parseCsv(text, ',')), table) << "seed " << seed;
  }
}

// Whatever the bytes, it comes to an end, and rows come in the order of their lines.
TEST(Csv, ReadsAnyBytes) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    std::string text;
    for (auto length = random() % 200; length > 0; --length) text += "\"\",\n\ra\0"[random() % 7];
    int line = 0;
    for (const CsvRow& row : parseCsv(text, ',')) {
      EXPECT_GT(row.line, line) << "seed " << seed;
      line = row.line;
    }
  }
}

}  // namespace
}  // namespace zq::host
