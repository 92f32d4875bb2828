// Whether this test was built under AddressSanitizer, which reserves address
// space and keeps freed memory, so memory figures and limits mean little.
#pragma once

namespace OrvelTest {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif
#else
inline constexpr bool kAddressSanitizer = false;
#endif

} // namespace OrvelTest
