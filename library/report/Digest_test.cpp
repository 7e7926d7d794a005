#include "library/report/Digest.h"

#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

// The hashes below were computed by another program (python3-xxhash) from the rule's words.

class DigestTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  static ReportSource& Fill(ReportSource& source) {
    return source.Number("a").String("b", 20).Number("c");
  }
};

TEST_F(DigestTest, IsTheSeededHashOfTheCasesBytes) {
  ReportSource source;
  Fill(source);
  ReportCases cases(source, 3);
  cases.Set(0, 0, 1.5).Set(0, 1, "Bern");
  cases.Set(1, 0, -0.0).Set(1, 2, -2.0);
  cases.Set(2, 1, "Z\xC3\xBCrich").Set(2, 2, 3.25);
  CaseDigester digester(source);
  EXPECT_EQ(digester.Of(cases.At(0), 1).Hex(), "7016dc832e5fe230500ef27933047995");
  EXPECT_EQ(digester.Of(cases.At(1), 2).Hex(), "e1b1e2388e23efafb235eefcd75939fc");
  EXPECT_EQ(digester.Of(cases.At(2), 3).Hex(), "7b2a0c4718095a9b01eaa360a0e527c8");
}

TEST_F(DigestTest, OfAllCasesIsTheSumModuloTwoToThePowerOf128) {
  ReportSource source;
  Fill(source);
  ReportCases cases(source, 3);
  cases.Set(0, 0, 1.5).Set(0, 1, "Bern");
  cases.Set(1, 0, -0.0).Set(1, 2, -2.0);
  cases.Set(2, 1, "Z\xC3\xBCrich").Set(2, 2, 3.25);
  DigestSink whole(source);
  whole.Take(whole.Make(cases.At(0), 3, 0));
  whole.Finish();
  EXPECT_EQ(whole.digest().Hex(), "ccf2cb02d48d2c7b042f84d6ab42db59");
  // However the cases are cut.
  DigestSink cut(source);
  auto second = cut.Make(cases.At(2), 1, 2);
  cut.Take(cut.Make(cases.At(0), 2, 0));
  cut.Take(std::move(second));
  EXPECT_EQ(cut.digest(), whole.digest());
}

TEST_F(DigestTest, IsMadeOnSeveralThreadsAtOnce) {
  ReportSource source;
  Fill(source);
  ReportCases cases(source, 100);
  for (std::size_t index = 0; index < 100; ++index) cases.Set(index, 0, static_cast<double>(index));
  DigestSink alone(source);
  alone.Take(alone.Make(cases.At(0), 100, 0));
  DigestSink shared(source);
  std::vector<std::unique_ptr<CasePart>> parts(4);
  std::vector<std::thread> threads;
  for (std::size_t part = 0; part < parts.size(); ++part) {
    threads.emplace_back([&shared, &cases, &parts, part] {
      parts[part] = shared.Make(cases.At(25 * part), 25, static_cast<std::int64_t>(25 * part));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (auto& part : parts) shared.Take(std::move(part));
  EXPECT_EQ(shared.digest(), alone.digest());
}

TEST_F(DigestTest, CarriesAndWrapsAround) {
  Digest sum{0xFFFFFFFFFFFFFFFFU, 0xFFFFFFFFFFFFFFFFU};
  sum += Digest{0, 2};
  EXPECT_EQ(sum, (Digest{0, 1}));
  Digest carry{5, 0x8000000000000000U};
  carry += Digest{0, 0x8000000000000000U};
  EXPECT_EQ(carry, (Digest{6, 0}));
}

TEST_F(DigestTest, DependsOnTheCasesNumber) {
  ReportSource source;
  source.Number("a");
  ReportCases cases(source, 1);
  CaseDigester digester(source);
  EXPECT_NE(digester.Of(cases.At(0), 1), digester.Of(cases.At(0), 2));
}

TEST_F(DigestTest, WhatIsNoFiniteNumberIsMissing) {
  ReportSource source;
  source.Number("a");
  ReportCases cases(source, 4);
  cases.Set(1, 0, std::numeric_limits<double>::infinity());
  cases.Set(2, 0, -std::numeric_limits<double>::infinity());
  cases.Set(3, 0, std::numeric_limits<double>::quiet_NaN());
  CaseDigester digester(source);
  const Digest missing = digester.Of(cases.At(0), 1);
  for (std::size_t index = 1; index < 4; ++index)
    EXPECT_EQ(digester.Of(cases.At(index), 1), missing);
}

TEST_F(DigestTest, ACodePagesTextCountsInUtf8) {
  ReportSource source;
  source.String("a", 24);
  const embedded::InCodePage page("windows-1252");
  ReportCases cases(source, 1);
  cases.Set(0, 0, "caf\xE9 \x80");
  EXPECT_EQ(CaseDigester(source).Of(cases.At(0), 1).Hex(), "45453eaef8af48449e11750f621ddf09");
}

TEST_F(DigestTest, BytesThatAreNoCharacterStandAsTheyAre) {
  ReportSource source;
  source.String("a", 8);
  ReportCases cases(source, 1);
  cases.Set(0, 0,
            "a\xFF"
            "b");
  EXPECT_EQ(CaseDigester(source).Of(cases.At(0), 1).Hex(), "c633c3ae0a181b4fc782b5841e1bcbdf");
  const embedded::InCodePage page("windows-932");
  EXPECT_EQ(CaseDigester(source).Of(cases.At(0), 1).Hex(), "c633c3ae0a181b4fc782b5841e1bcbdf");
}

TEST_F(DigestTest, ACaseWithoutVariablesHasADigest) {
  const ReportSource source;
  const OBS none{};
  EXPECT_EQ(CaseDigester(source).Of(&none, 7).Hex(), "76a30bdf56cdfa2ccb4aa04fe72c771f");
}

}  // namespace
}  // namespace library
