#pragma once

#include <string_view>

/// Standard output. @throws TsError when it takes no more.
void WriteOut(std::string_view text);
void FlushOut();
