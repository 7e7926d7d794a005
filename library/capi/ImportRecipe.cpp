#include "library/capi/ImportRecipe.h"

#include <nlohmann/json.hpp>

#include "library/capi/Failure.h"
#include "library/report/ImportWatch.h"

namespace library {
namespace {

using nlohmann::json;

constexpr int kVersion = 2;

// Bytes of any kind as numbers.
json BytesJson(const std::string& bytes) {
  json list = json::array();
  for (const char byte : bytes) list.push_back(static_cast<unsigned char>(byte));
  return list;
}

std::string BytesOf(const json& list) {
  std::string bytes;
  for (const json& byte : list) bytes += static_cast<char>(byte.get<std::uint8_t>());
  return bytes;
}

json FormatJson(const QANT_Format& format) { return {format.type, format.width, format.decimals}; }

QANT_Format FormatOf(const json& list) {
  return {list.at(0).get<int>(), list.at(1).get<int>(), list.at(2).get<int>()};
}

json DataSetJson(const RecipeDataSet& set) {
  json variables = json::array();
  for (const DataSetVariable& variable : set.variables) {
    variables.push_back({variable.name, variable.type, FormatJson(variable.format),
                         FormatJson(variable.writeFormat), variable.displayWidth});
  }
  json text = {{"variables", std::move(variables)},
               {"name", set.fileName},
               {"source", nullptr},
               {"cases_before", set.casesBefore}};
  if (set.sourceText) text["source"] = BytesJson(*set.sourceText);
  return text;
}

RecipeDataSet DataSetOf(const json& text) {
  RecipeDataSet set;
  for (const json& variable : text.at("variables")) {
    set.variables.push_back({variable.at(0).get<std::string>(), variable.at(1).get<int>(),
                             FormatOf(variable.at(2)), FormatOf(variable.at(3)),
                             variable.at(4).get<int>()});
  }
  text.at("name").get_to(set.fileName);
  if (const json& source = text.at("source"); !source.is_null()) set.sourceText = BytesOf(source);
  text.at("cases_before").get_to(set.casesBefore);
  return set;
}

}  // namespace

std::string RecipeText(const ImportRecipe& recipe) {
  json text = {{"textwizard_recipe", kVersion},
               {"command", recipe.command},
               {"decimal_comma", recipe.host.decimalComma},
               {"code_page", recipe.host.codePage},
               {"locale_code_page", recipe.host.localeCodePage},
               {"join_quoted_lines", recipe.rewriting.joinQuotedLines},
               {"backslash_escapes", recipe.rewriting.backslashEscapes},
               {"keep_stray_qualifiers", recipe.rewriting.keepStrayQualifiers},
               {"mark", BytesJson(recipe.shownMark)},
               {"transcode", recipe.transcoding},
               {"padded_at", recipe.paddedAt},
               {"stand_ins", nullptr},
               {"null_texts", nullptr},
               {"labels", recipe.labels},
               {"integers", recipe.integers},
               {"names_as_variables", recipe.namesAsVariables},
               {"file", BytesJson(recipe.file)},
               {"state", nullptr}};
  if (recipe.nullTexts != DefaultNullTexts()) text["null_texts"] = recipe.nullTexts;
  if (recipe.standIns) {
    text["stand_ins"] = BytesJson(
        {recipe.standIns->lineFeed, recipe.standIns->carriageReturn, recipe.standIns->nothing});
  }
  if (recipe.dataSet) text["data_set"] = DataSetJson(*recipe.dataSet);
  if (recipe.state) text["state"] = {recipe.state->bytes, recipe.state->modified};
  return text.dump(-1, ' ', true, json::error_handler_t::replace);
}

ImportRecipe ReadRecipe(const std::string& text) {
  try {
    const json read = json::parse(text);
    ImportRecipe recipe;
    if (read.at("textwizard_recipe") != kVersion) {
      throw Failure{.status = TEXTWIZARD_USAGE,
                    .text = "the recipe is of another version of the library: make it again"};
    }
    read.at("command").get_to(recipe.command);
    read.at("decimal_comma").get_to(recipe.host.decimalComma);
    read.at("code_page").get_to(recipe.host.codePage);
    read.at("locale_code_page").get_to(recipe.host.localeCodePage);
    read.at("join_quoted_lines").get_to(recipe.rewriting.joinQuotedLines);
    read.at("backslash_escapes").get_to(recipe.rewriting.backslashEscapes);
    read.at("keep_stray_qualifiers").get_to(recipe.rewriting.keepStrayQualifiers);
    recipe.shownMark = BytesOf(read.at("mark"));
    read.at("transcode").get_to(recipe.transcoding);
    read.at("padded_at").get_to(recipe.paddedAt);
    if (const json& standIns = read.at("stand_ins"); !standIns.is_null()) {
      const std::string bytes = BytesOf(standIns);
      recipe.standIns = StandIns{bytes.at(0), bytes.at(1), bytes.at(2)};
    }
    recipe.nullTexts = DefaultNullTexts();
    if (const json& nulls = read.at("null_texts"); !nulls.is_null()) {
      nulls.get_to(recipe.nullTexts);
    }
    read.at("labels").get_to(recipe.labels);
    read.at("integers").get_to(recipe.integers);
    read.at("names_as_variables").get_to(recipe.namesAsVariables);
    recipe.file = BytesOf(read.at("file"));
    if (const auto set = read.find("data_set"); set != read.end()) {
      recipe.dataSet = DataSetOf(*set);
    }
    if (const json& state = read.at("state"); !state.is_null()) {
      recipe.state = FileState{state.at(0).get<std::int64_t>(), state.at(1).get<std::int64_t>()};
    }
    return recipe;
  } catch (const json::exception&) {
  } catch (const std::out_of_range&) {
  }
  throw Failure{.status = TEXTWIZARD_USAGE,
                .text = "the text is no recipe: give what textwizard_recipe gave"};
}

}  // namespace library
