#pragma once
// What the frame traced while a piece of a test ran, every facility and level alike.
#include <functional>
#include <string>

namespace TableTest {

std::string tracesOf(const std::function<void()>& run);
bool contains(const std::string& text, const std::string& part);

}  // namespace TableTest
