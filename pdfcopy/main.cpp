#include "PdfCopy.h"
#include "Version.h"

int main(int argc, char* argv[]) {
  if (velka::answersVersion(argc, argv, "velkapdfcopy")) return 0;
  return velka::runPdfCopy(argc, argv);
}
