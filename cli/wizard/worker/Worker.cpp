#include "cli/wizard/worker/Worker.h"

#include <csignal>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>

#include <sys/prctl.h>
#include <nlohmann/json.hpp>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/terminal/Interrupt.h"
#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/Decodings.h"
#include "cli/wizard/worker/EditedCommand.h"
#include "cli/wizard/worker/FileReading.h"
#include "cli/wizard/worker/HeadCases.h"
#include "cli/wizard/worker/RawRecords.h"
#include "cli/wizard/worker/WholeTypes.h"

namespace cli {
namespace {

using nlohmann::json;

void Tell(const char* name, const json& data) {
  const json event = {{"name", name}, {"data", data}};
  const std::string line = event.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

json Answer(const std::string& request, const json& body) {
  if (request == "sniff") return FileReading(body);
  if (request == "raw") return RawRecords(body);
  if (request == "encodings") return Decodings(body);
  if (request == "head") return HeadCases(body);
  if (request == "command") return EditedCommand(body);
  if (request == "types") {
    return WholeTypes(body, [](const json& progress) { Tell("progress", progress); });
  }
  throw RequestRefused("There is no such request.");
}

int Work() {
  // Nobody is left to work for when the server is gone.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  try {
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const json question = json::parse(text);
    const json answer = Answer(question.at("request"), question.at("body"));
    Tell("done", answer);
  } catch (const RequestRefused& error) {
    if (embedded::AttentionRequested()) {
      Tell("cancelled", json::object());
    } else {
      Tell("failed", ErrorJson(error));
    }
  } catch (const json::exception&) {
    Tell("failed", ErrorJson(RequestRefused("The request is not what this program understands.")));
  } catch (const std::bad_alloc&) {
    Tell("failed", ErrorJson(RequestRefused("There is not enough memory.")));
  } catch (const std::exception& error) {
    Tell("failed", ErrorJson(RequestRefused(error.what())));
  }
  return kExitSuccess;
}

}  // namespace

void AddWizardWorker(CLI::App& program, int* status) {
  CLI::App* worker = program.add_subcommand(kWorkerSubcommand, "Answers the wizard's server");
  worker->group("");
  worker->callback([status] { *status = Work(); });
}

}  // namespace cli
