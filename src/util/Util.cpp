// The class itself: no data, and an empty virtual destructor defined here so
// that its virtual table and type information live in the library.
#include <OrvelGUIDialogs/Util.hpp>

namespace OrvelDialogs {

Util::Util() = default;

Util::~Util() {}

} // namespace OrvelDialogs
