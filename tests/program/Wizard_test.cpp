// `textwizard wizard` from outside: what it prints, how it ends, and what its processes answer.

#include <algorithm>
#include <chrono>
#include <functional>
#include <sstream>
#include <thread>

#include "tests/program/Program.h"

namespace {

using nlohmann::json;
using program::Ended;

class Wizard : public program::ProgramTest {
 protected:
  // What the server's process says of a request: its last event.
  json Ask(const std::string& request, const json& body) const {
    const Ended ended = Run({"wizard-worker"}, json{{"request", request}, {"body", body}}.dump());
    EXPECT_EQ(ended.status, 0) << ended.err;
    json last;
    std::istringstream lines(ended.out);
    for (std::string line; std::getline(lines, line);) last = json::parse(line);
    return last;
  }
  json Done(const std::string& request, const json& body) const {
    const json event = Ask(request, body);
    EXPECT_EQ(event.value("name", ""), "done") << event;
    return event.value("data", json());
  }
  std::string Refused(const std::string& request, const json& body) const {
    const json event = Ask(request, body);
    EXPECT_EQ(event.value("name", ""), "failed") << event;
    return event.at("data").at("error").at("text");
  }
  json About(const json& given = json::object()) const {
    return {{"path", folder_ / "town.csv"}, {"given", given}};
  }
  // Waits until the program has printed its address, or has ended.
  static void WaitForAddress(const std::function<std::string()>& printed) {
    for (int i = 0; i < 3000 && printed().find('\n') == std::string::npos; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
};

TEST_F(Wizard, TheFirstCasesComeWithTheirPlacesInTheLine) {
  WriteTowns();
  json body = About();
  body["count"] = 10;
  const json head = Done("head", body);
  ASSERT_EQ(head.at("cases").size(), 3U);
  const json& chur = head.at("cases").at(1);
  EXPECT_EQ(chur.at("line"), 3);
  // 2,"Chur, Graubuenden",,1000000
  const json& town = chur.at("cells").at(1);
  EXPECT_EQ(town.at("value"), "Chur, Graubuenden");
  EXPECT_EQ(town.at("from"), 2);
  EXPECT_EQ(town.at("to"), 21);
  EXPECT_EQ(chur.at("cells").at(2).at("missing"), true);
  EXPECT_EQ(chur.at("cells").at(3).at("from"), 23);
  EXPECT_EQ(chur.at("cells").at(3).at("to"), 30);
  EXPECT_EQ(head.at("cases").at(0).at("cells").at(2).at("value"), "1891-05-15");
}

TEST_F(Wizard, PlacesAreCharactersAndLinesPhysical) {
  folder_.Write("town.csv", "town;ort\n\nZürich;Höngg\n\xF0\x9F\x98\x80;b\n");
  json body = About({{"delimiter", ";"}, {"header", true}});
  body["count"] = 5;
  const json cases = Done("head", body).at("cases");
  ASSERT_EQ(cases.size(), 2U);
  EXPECT_EQ(cases.at(0).at("line"), 3);
  EXPECT_EQ(cases.at(0).at("cells").at(1).at("from"), 7);
  EXPECT_EQ(cases.at(0).at("cells").at(1).at("to"), 12);
  EXPECT_EQ(cases.at(1).at("cells").at(1).at("from"), 2);
}

TEST_F(Wizard, TypesComeFromTheWholeFileWithCountsAndOffendingValues) {
  WriteTowns();
  const json types = Done("types", About({{"types", {{"fee", "F8.2"}}}}));
  const json& fee = types.at("columns").at(3);
  EXPECT_EQ(fee.at("read"), 2);
  EXPECT_EQ(fee.at("unreadable"), 1);
  ASSERT_EQ(fee.at("offending").size(), 1U);
  EXPECT_EQ(fee.at("offending").at(0).at("line"), 4);
  EXPECT_EQ(fee.at("offending").at(0).at("text"), "none");
  EXPECT_EQ(types.at("columns").at(2).at("empty"), 1);
  EXPECT_EQ(types.at("columns").at(2).at("format"), "ADATE10");
  EXPECT_EQ(types.at("columns").at(2).at("day_month").at("verdict"), "decided");
  EXPECT_EQ(types.at("cases"), 3);
}

TEST_F(Wizard, TheFirstOffendingValuesOfEachKindAndTheCutOnesAreTold) {
  folder_.Write("town.csv",
                "n,place\n1,Chur\nx1,Graub\xC3\xBCnden\n31/12/2020,Bern\nx2,Basel-Stadt\n");
  const json types =
      Done("types", About({{"header", true}, {"types", {{"n", "F8"}, {"place", "A6"}}}}));
  const json& number = types.at("columns").at(0);
  EXPECT_EQ(number.at("read"), 1);
  EXPECT_EQ(number.at("unreadable"), 3);
  ASSERT_EQ(number.at("offending").size(), 2U) << "texts, and dates";
  EXPECT_EQ(number.at("offending").at(0).at("text"), "x1");
  EXPECT_EQ(number.at("offending").at(0).at("count"), 2);
  EXPECT_EQ(number.at("offending").at(1).at("line"), 4);
  const json& place = types.at("columns").at(1);
  EXPECT_EQ(place.at("read"), 2);
  EXPECT_EQ(place.at("cut"), 2);
  EXPECT_EQ(place.at("longest").at("count"), 11);
}

TEST_F(Wizard, BlanksBeforeValuesAndSeveralBlanksAreAsTheyAreGiven) {
  folder_.Write("town.csv", "a;b\n1; x\n2;y\n3;z\n");
  EXPECT_EQ(Done("sniff", About()).at("leading_blanks"), false);
  const std::string kept = Done("types", About()).at("command");
  EXPECT_EQ(kept.find("LEADINGSPACES"), std::string::npos);
  const json passed = About({{"leading_blanks", true}});
  EXPECT_EQ(Done("sniff", passed).at("leading_blanks"), true);
  const json types = Done("types", passed);
  const std::string command = types.at("command");
  EXPECT_NE(command.find("/LEADINGSPACES IGNORE=YES"), std::string::npos);
  const json edited = Done("command", {{"command", command}, {"options", types.at("options")}});
  EXPECT_EQ(edited.at("given").at("leading_blanks"), true);
  folder_.Write("town.csv", "a b\n1  x\n2  y\n3  z\n");
  for (const bool several : {false, true}) {
    const std::string blanks =
        Done("types", About({{"delimiter", " "}, {"multiple_blanks", several}})).at("command");
    EXPECT_EQ(blanks.find("/MULTIPLESPACES IGNORE=YES") != std::string::npos, several);
  }
}

TEST_F(Wizard, TheCommandOfTheTypesRunsAndASkippedColumnIsLeftOut) {
  WriteTowns();
  const json types = Done("types", About({{"types", {{"town", "X"}}}}));
  folder_.Write("made.sps", types.at("command").get<std::string>());
  const Ended ended = Run({"run", "--quiet", "made.sps", "--cases", "-"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "id,founded,fee\n1,1891-05-15,2.5\n2,,1000000\n3,2020-01-31,none\n");
}

TEST_F(Wizard, AnEditedCommandBecomesSettingsThatGiveItAgain) {
  WriteTowns();
  const json types = Done("types", About({{"types", {{"town", "X"}}}}));
  const std::string command = types.at("command");
  const json edited = Done("command", {{"command", command}, {"options", types.at("options")}});
  EXPECT_EQ(edited.at("path"), folder_ / "town.csv");
  const json again = Done("types", About(edited.at("given")));
  EXPECT_EQ(again.at("command"), command);
}

TEST_F(Wizard, AWrongCommandIsRefusedWithItsPlace) {
  WriteTowns();
  const json event = Ask("command", {{"command",
                                      "GET DATA /TYPE=TXT /FILE='a.csv'\n  /FIRSTCASE=0 "
                                      "/VARIABLES=a F8.\n"}});
  ASSERT_EQ(event.at("name"), "failed");
  const json& error = event.at("data").at("error");
  EXPECT_EQ(error.at("number"), 2259);
  EXPECT_EQ(error.at("line"), 2);
  EXPECT_EQ(error.at("column"), 4);
}

TEST_F(Wizard, WhatThePageHasNoSettingForIsSaid) {
  const std::string start = "GET DATA /TYPE=TXT /FILE='a.csv' ";
  for (const char* rest : {"/IMPORTCASE=PERCENT 10 /DELIMITERS=',' /VARIABLES=a F8.\n",
                           "/DELCASE=VARIABLES 3 /DELIMITERS=',' /VARIABLES=a F8 b F8 c F8.\n",
                           "/DELIMITERS=',;' /VARIABLES=a F8.\n"}) {
    EXPECT_NE(Refused("command", {{"command", start + rest}}).find("no setting"), std::string::npos)
        << rest;
  }
}

TEST_F(Wizard, RawLinesAreThoseOfTheHandler) {
  folder_.Write("town.csv", "eins\xFC\n\nzwei\n");
  const json raw = Done(
      "raw",
      {{"path", folder_ / "town.csv"}, {"encoding", "windows-1252"}, {"first", 1}, {"count", 5}});
  ASSERT_EQ(raw.at("records").size(), 3U);
  EXPECT_EQ(raw.at("records").at(0).at("text"), "einsü");
  EXPECT_EQ(raw.at("records").at(1).at("text"), "");
  EXPECT_EQ(raw.at("records").at(2).at("line"), 3);
}

TEST_F(Wizard, OtherEncodingsAreShownWithLinesThatTellThemApart) {
  folder_.Write("town.csv", "plain\nZ\xC3\xBCrich\n");
  const json answer =
      Done("encodings", {{"path", folder_ / "town.csv"}, {"encodings", {"UTF-8", "windows-1252"}}});
  const json& shown = answer.at("encodings");
  ASSERT_EQ(shown.size(), 2U);
  const auto has = [](const json& lines, const std::string& text) {
    return std::find(lines.begin(), lines.end(), text) != lines.end();
  };
  EXPECT_TRUE(has(shown.at(0).at("lines"), "Zürich"));
  EXPECT_TRUE(has(shown.at(1).at("lines"), "ZÃ¼rich"));
}

TEST_F(Wizard, FilesAndSettingsThatCannotBeUsedAreRefused) {
  EXPECT_NE(Refused("sniff", About()).find("cannot be read"), std::string::npos);
  folder_.Write("town.csv",
                "\x7F"
                "ELF\x02\x01\x01 and so on, for long enough to be looked at");
  EXPECT_NE(Refused("sniff", About()).find("not a text file"), std::string::npos);
  WriteTowns();
  EXPECT_NE(Refused("types", About({{"types", {{"fee", "Z3"}}}})).find("Z3"), std::string::npos);
  EXPECT_NE(Refused("head", {{"path", "x"}}).find("not what"), std::string::npos);
  EXPECT_NE(Refused("format-disk", About()).find("no such request"), std::string::npos);
}

TEST_F(Wizard, ItPrintsItsAddressAndCtrlCEndsItWell) {
  WriteTowns();
  const pid_t child = Start({"wizard", "--no-open", "town.csv"});
  WaitForAddress([this] { return Printed(); });
  const std::string address = Printed();
  kill(child, SIGINT);
  const Ended ended = Wait(child);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.err, "");
  ASSERT_TRUE(address.starts_with("http://127.0.0.1:")) << address;
  EXPECT_NE(address.find("/?token="), std::string::npos);
  EXPECT_EQ(address, ended.out) << "one line and nothing else";
}

TEST_F(Wizard, AFileThatIsNotBelowTheRootIsWrongUsage) {
  WriteTowns();
  folder_.Write("inner/other.csv", "a\n1\n");
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"wizard", "--no-open", "none.csv"},
                                             {"wizard", "--no-open", "--root", "inner", "town.csv"},
                                             {"wizard", "--no-open", "--root", "nowhere"},
                                             {"wizard", "--no-open", "--port", "70000"}}) {
    const Ended ended = Run(arguments);
    EXPECT_EQ(ended.status, 2) << arguments.back();
    EXPECT_FALSE(ended.err.empty());
    EXPECT_EQ(ended.out, "");
  }
}

}  // namespace
