// A printer, or the next filter, that goes after so many bytes.
#include <gtest/gtest.h>

namespace velka::testing {
namespace {}  // namespace
}  // namespace velka::testing
