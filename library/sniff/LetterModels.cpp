#include "library/sniff/LetterModels.h"

#include <cmath>
#include <string_view>

namespace library {
namespace {

// Letters in groups of falling frequency: those of a group occur about as often, those of the next
// one less than half as often.
struct Groups {
  const char* language;
  Script script;
  std::u32string_view letters;
};

constexpr double kGroupRatio = 0.4;

constexpr Groups kLanguages[] = {
    {"French", Script::kLatin, U"é|èà|êç|ôîûâù|ëïœ|üÿæ"},
    {"German", Script::kLatin, U"üä|öß|é"},
    {"Spanish", Script::kLatin, U"óíá|éñú|ü"},
    {"Portuguese", Script::kLatin, U"ãçáé|íóõê|âúàô|ü"},
    {"Italian", Script::kLatin, U"èà|òùì|é"},
    {"Catalan", Script::kLatin, U"àéèóí|çòú|ïü"},
    {"Dutch", Script::kLatin, U"ëé|ï|èöü|çê"},
    {"Swedish", Script::kLatin, U"äåö|é|àü"},
    {"Finnish", Script::kLatin, U"ä|ö|å|é"},
    {"Danish", Script::kLatin, U"øåæ|é|öäü"},
    {"Icelandic", Script::kLatin, U"ðáí|óöþæéú|ý"},
    {"Hungarian", Script::kLatin, U"áé|öóő|üíú|ű"},
    {"Polish", Script::kLatin, U"łąęó|żść|ńź"},
    {"Czech", Script::kLatin, U"íá|éěřšžčý|ů|úňťďó"},
    {"Slovak", Script::kLatin, U"áíéčžýšú|ľťňďô|äóĺŕ"},
    {"Slovene", Script::kLatin, U"čšž|ćđ"},
    {"Croatian", Script::kLatin, U"čš|žćđ"},
    {"Romanian", Script::kLatin, U"ă|îșțşţâ"},
    {"Turkish", Script::kLatin, U"ıüş|çğöi|âî"},
    {"Estonian", Script::kLatin, U"äõü|ö|šž"},
    {"Latvian", Script::kLatin, U"ā|īē|šūņļ|ķžģč"},
    {"Lithuanian", Script::kLatin, U"ėųš|žįąū|čę"},
    {"Albanian", Script::kLatin, U"ë|ç"},
    {"Welsh", Script::kLatin, U"ŵŷâêôîû|áëïö"},
    {"Irish", Script::kLatin, U"áíéóú|ṁċḋḟġṗṡṫ"},
    {"Maltese", Script::kLatin, U"ħż|ġċ|àèìòù"},
    {"Esperanto", Script::kLatin, U"ĝŭĉ|ŝĵ|ĥ"},
    {"Vietnamese", Script::kLatin, U"đươôêâăáàéèíóòúýãõ"},
    {"Russian", Script::kCyrillic, U"оеаи|нтсрвл|кмдпуяыьгзб|чйхжшю|цщэфё|ъ"},
    {"Bulgarian", Script::kCyrillic, U"аоеи|тнрсв|лкдпмзъгуб|чцяжйхшщ|юф|ь"},
    {"Ukrainian", Script::kCyrillic, U"оаи|нвітер|слкудмпязьг|бчхйжїшє|юцщф|ґ"},
    {"Serbian", Script::kCyrillic, U"аоие|нтрсјв|укдлмпзгб|њцчћшжљђхф|џ"},
    {"Macedonian", Script::kCyrillic, U"аоие|тнрсв|лкдпмзјгу|бчцшжќњхф|љѓџѕ"},
    {"Belarusian", Script::kCyrillic, U"а|оіненрыас|тклудмпвзяь|гбчйцшжўюэхё|ф"},
    {"Greek", Script::kGreek, U"αοιτε|νσηςρκπυμλ|όίάέγδωήχθ|ύώφβ|ξζψ|ϊϋΐΰ"},
    {"Hebrew", Script::kHebrew, U"יוה|לארתבמשנ|םדקעחפכ|טצגזןס|ך|ףץ"},
    {"Arabic", Script::kArabic, U"ال|يمونرت|بةعدسهفكقأح|جشصىخإط|ضذزثغئء|ظؤآ"},
    {"Persian", Script::kArabic, U"ای|رندهومتب|سشکلزخفقگعپچجح|آغطصژ|ضذثظءئؤ"},
    {"Thai", Script::kThai, U"านรอกเ|่้ังมยีวลดท|ตสิะปบคหจแ|พขชื์ใไุ|ูโ็ธผถำณศ|ซญภึษ|ฉฝฟฐฎฏฑฒฆฌฮๆฯ"},
};

LetterModel MakeModel(const Groups& groups) {
  LetterModel model{groups.language, groups.script, {}};
  double weight = 1.0;
  double total = 0.0;
  for (const char32_t ch : groups.letters) {
    if (ch == U'|') {
      weight *= kGroupRatio;
    } else if (model.shares.emplace(ch, weight).second) {
      total += weight;
    }
  }
  for (auto& [ch, share] : model.shares) share = std::log(share / total);
  return model;
}

}  // namespace

Script ScriptOf(char32_t ch) {
  if ((ch >= U'A' && ch <= U'Z') || (ch >= U'a' && ch <= U'z')) return Script::kLatin;
  if (ch < 0xC0) return Script::kNone;
  if (ch < 0x250) return ch == 0xD7 || ch == 0xF7 ? Script::kNone : Script::kLatin;
  if (ch >= 0x300 && ch < 0x370) return Script::kLatin;
  if (ch >= 0x370 && ch < 0x400) return Script::kGreek;
  if (ch >= 0x400 && ch < 0x530) return Script::kCyrillic;
  if (ch >= 0x590 && ch < 0x600) return Script::kHebrew;
  if (ch >= 0x600 && ch < 0x700) return Script::kArabic;
  if (ch >= 0xE00 && ch < 0xE80) return Script::kThai;
  if (ch >= 0x1E00 && ch < 0x1F00) return Script::kLatin;
  return Script::kNone;
}

const std::vector<LetterModel>& LetterModels() {
  static const std::vector<LetterModel> kModels = [] {
    std::vector<LetterModel> models;
    for (const Groups& groups : kLanguages) models.push_back(MakeModel(groups));
    return models;
  }();
  return kModels;
}

}  // namespace library
