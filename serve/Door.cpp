#include "Door.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <utility>

#include "Gate.h"

namespace velka::serve {
namespace {

constexpr int kQueue = 64;
constexpr unsigned kMostConnections = 64;
constexpr unsigned kIdleSeconds = 120;
constexpr size_t kMostRequestBytes = size_t{32} << 10;

struct FreeResponse {
  void operator()(MHD_Response* response) const { MHD_destroy_response(response); }
};

std::string textOf(const char* bytes, size_t size) {
  return bytes == nullptr ? "" : std::string(bytes, size);
}

MHD_Result addQuery(void* to, MHD_ValueKind /*kind*/, const char* key, size_t keySize,
                    const char* value, size_t valueSize) {
  static_cast<Request*>(to)->query.emplace_back(textOf(key, keySize), textOf(value, valueSize));
  return MHD_YES;
}

MHD_Result addHeader(void* to, MHD_ValueKind /*kind*/, const char* key, const char* value) {
  auto& request = *static_cast<Request*>(to);
  const std::string text = value == nullptr ? "" : value;
  if (strcasecmp(key, "Host") == 0) request.hosts.push_back(text);
  if (strcasecmp(key, "Origin") == 0) request.origins.push_back(text);
  if (strcasecmp(key, "Sec-Fetch-Site") == 0) request.site = text;
  return MHD_YES;
}

void addHeaders(MHD_Response* reply, const Pairs& headers) {
  for (const auto& [name, value] : headers)
    (void)MHD_add_response_header(reply, name.c_str(), value.c_str());
}

MHD_Result send(MHD_Connection* connection, Response response) {
  auto* body = new std::string(std::move(response.body));
  const auto release = [](void* text) { delete static_cast<std::string*>(text); };
  const std::unique_ptr<MHD_Response, FreeResponse> reply(
      MHD_create_response_from_buffer_with_free_callback_cls(body->size(), body->data(), release,
                                                             body));
  if (!reply) {
    release(body);
    return MHD_NO;
  }
  (void)MHD_add_response_header(reply.get(), "Content-Type", response.type.c_str());
  addHeaders(reply.get(), safeHeaders());
  addHeaders(reply.get(), response.headers);
  return MHD_queue_response(connection, static_cast<unsigned>(response.status), reply.get());
}

// Called once when the headers are there and again when the body is, which nobody reads: a
// request that may have one is refused before it comes.
MHD_Result handle(void* door, MHD_Connection* connection, const char* url, const char* method,
                  const char* /*version*/, const char* /*body*/, size_t* bodySize,
                  void** own) noexcept {
  if ((*own == nullptr && std::strcmp(method, "GET") == 0) || *bodySize != 0) {
    *own = door;
    *bodySize = 0;
    return MHD_YES;
  }
  try {
    Request request;
    request.method = method;
    request.path = url;
    (void)MHD_get_connection_values_n(connection, MHD_GET_ARGUMENT_KIND, addQuery, &request);
    (void)MHD_get_connection_values(connection, MHD_HEADER_KIND, addHeader, &request);
    return send(connection, static_cast<const Door*>(door)->answer(request));
  } catch (const std::exception&) {
    return MHD_NO;
  }
}

}  // namespace

Door::Door(uint16_t port) {
  listenOn(port);
  if (trouble_.empty()) return;
  trouble_ += ": " + std::string(std::strerror(errno));  // NOLINT(concurrency-mt-unsafe): yet one
}

void Door::listenOn(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  const int yes = 1;
  socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket_ < 0 || setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
      bind(socket_, plain, size) != 0 || listen(socket_, kQueue) != 0 ||
      getsockname(socket_, plain, &size) != 0) {
    trouble_ = port == 0 ? "no port can be had" : "port " + std::to_string(port);
  }
  port_ = ntohs(address.sin_port);
}

void Door::close() {
  if (daemon_ != nullptr) MHD_stop_daemon(daemon_);  // closes the socket, too
  if (daemon_ == nullptr && socket_ >= 0) (void)::close(socket_);
  daemon_ = nullptr;
  socket_ = -1;
}

void Door::open(std::function<Response(const Request&)> answer) {
  answer_ = std::move(answer);
  daemon_ = MHD_start_daemon(
      MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_ITC, port_, nullptr,
      nullptr, handle, this, MHD_OPTION_LISTEN_SOCKET, socket_, MHD_OPTION_CONNECTION_LIMIT,
      kMostConnections, MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds,
      MHD_OPTION_CONNECTION_MEMORY_LIMIT, kMostRequestBytes, MHD_OPTION_END);
  if (daemon_ == nullptr) trouble_ = "the server cannot be started";
}

Response Door::answer(const Request& request) const noexcept {
  try {
    return answer_(request);
  } catch (const std::bad_alloc&) {
    return {kInternal, "text/plain", "not enough memory", {}};
  } catch (const std::exception& error) {
    return {kInternal, "text/plain", error.what(), {}};
  }
}

}  // namespace velka::serve
