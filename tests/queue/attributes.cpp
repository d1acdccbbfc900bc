// queue-attributes JOB: the attributes of a job as the print server tells them, a line each,
// "name=value" and further values behind commas.
#include <cups/cups.h>

#include <array>
#include <cstdio>
#include <cstdlib>

int main(int argc, char* argv[]) {
  if (argc != 2) return 2;
  ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
               "ipp://localhost/printers/");
  ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", std::atoi(argv[1]));
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr,
               cupsUser());
  ipp_t* response = cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/");
  if (response == nullptr || ippGetStatusCode(response) > IPP_STATUS_OK_EVENTS_COMPLETE) {
    (void)std::fprintf(stderr, "no attributes of job %s: %s\n", argv[1], cupsLastErrorString());
    return 1;
  }
  for (ipp_attribute_t* attribute = ippFirstAttribute(response); attribute != nullptr;
       attribute = ippNextAttribute(response)) {
    std::array<char, 4096> value = {};
    ippAttributeString(attribute, value.data(), value.size());
    if (ippGetName(attribute) != nullptr)
      std::printf("%s=%s\n", ippGetName(attribute), value.data());
  }
  ippDelete(response);
  return 0;
}
