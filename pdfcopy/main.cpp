#include "PdfCopy.h"

int main(int argc, char* argv[]) {
  return velka::runPdfCopy(argc, argv);
}
