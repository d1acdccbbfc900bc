#include <csignal>
#include <string>

#include "Driver.h"
#include "PdfDrawing.h"
#include "Server.h"
#include "Version.h"

int main(int argc, char* argv[]) {
  if (velka::answersVersion(argc, argv, "velka-printer-app")) return 0;
  if (argc > 1 && std::string(argv[1]) == "draw") return velka::app::runDrawing(argc - 2, argv + 2);
  // A filter or a printer that is gone is told by what writing returns.
  std::signal(SIGPIPE, SIG_IGN);
  const auto drivers = velka::app::drivers();
  const std::string version(velka::version());
  return papplMainloop(argc, argv, version.c_str(), nullptr, static_cast<int>(drivers.size()),
                       drivers.data(), velka::app::matchDriver, velka::app::describeDriver, nullptr,
                       nullptr, velka::app::makeSystem, nullptr, nullptr);
}
