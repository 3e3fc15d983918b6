// The text listing (docs/summary-format.md) and its two reports.
#include <gtest/gtest.h>

#include "summary/SummaryTestUtil.h"
#include "support/EvtLogRecorder.h"

using namespace sumtest;

namespace {

const std::string kHeader =
    "Name;Country;State;RifLat;RIfLon;RifAlt;Length;BeaconNumber;BeaconType;VariantIdx;"
    "FileName;Guid;Date;OffsetFw;OffsetPti;Dummy\n";

std::string Text(const std::string& path) {
  const fixtures::Bytes b = fixtures::ReadAll(path);
  return std::string(b.begin(), b.end());
}

TEST(SummaryText, OneLinePerRecordSortedByCountryAndName) {
  fixtures::TempDir dir;
  _SDatoRiassuntivo r = Rec("Mon;za 100%\xC3\x89\xFF\n", "ITA", 456200000, 92800000, 0x0001800000001234ull,
                            "0k3f9zq1", 7u | 5u << 6 | 14u << 12 | 30u << 17 | 4u << 22 | 9u << 26 | 1u << 31);
  r.RifAlt = -12000;
  r.Length = 5793.456f;
  r.BeaconNumber = 3;
  r.BeaconType = 2;
  r.VariantIdx = -1;
  r.OffsetFw = 280;
  r.OffsetPti = 1234;
  r.Dummy[0] = 0xAB;
  const _SDatoRiassuntivo first = Rec("B", "FRA");
  std::unique_ptr<CFileRiassuntivo> s = Summary({&r, &first});
  evtrec::Reset();
  ASSERT_TRUE(s->CreaFileAlfabSortedConNazioneTestuale(dir.path() + "t.txt"));
  const std::string zeros86(86, '0'), zeros88(88, '0');
  EXPECT_EQ(Text(dir.path() + "t.txt"),
            kHeader + "B;FRA;;0;0;0;0.00;0;1;0;aaaaaaaa;0:0:0:0:0:0:0:0:0:0;0:0:0:0:0:0:0;0;0;" +
                zeros88 + "\n" +
                "Mon%3Bza 100%25\xC3\x89%FF%0A;ITA;;456200000;92800000;-12000;5793.46;3;2;-1;0k3f9zq1;"
                "4660:0:0:0:0:0:0:1:1:0;7:5:14:30:4:9:1;280;1234;ab" + zeros86 + "\n");
  EXPECT_TRUE(evtrec::Events().empty());
}

TEST(SummaryText, ReportsAFileItCannotWriteAndNullRecords) {
  fixtures::TempDir dir;
  _SDatoRiassuntivo a = Rec("A");
  evtrec::Reset();
  EXPECT_FALSE(CFileRiassuntivo::ScriviRiassuntivoTestuale({&a}, dir.path() + "no/t.txt"));
  EXPECT_TRUE(CFileRiassuntivo::ScriviRiassuntivoTestuale({nullptr, &a}, dir.path() + "t.txt"));
  ASSERT_EQ(evtrec::Events().size(), 2u);
  EXPECT_EQ(evtrec::Events()[0].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[0].Message(), "file " + dir.path() + "no/t.txt is already open");
  EXPECT_EQ(evtrec::Events()[1].Message(), "pvar empty pointer");
  EXPECT_EQ(Text(dir.path() + "t.txt").substr(kHeader.size(), 2), "A;");
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"t.txt"});
}

}  // namespace
