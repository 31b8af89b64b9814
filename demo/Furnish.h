#pragma once

#include <string>

namespace vantrel::demo {

/// Fills a folder that does not exist with a small believable phone, about 30 MB. It appears whole or not at
/// all; when several processes try at once, one of them wins. Throws std::runtime_error.
void furnish(const std::string &root);

} // namespace vantrel::demo
