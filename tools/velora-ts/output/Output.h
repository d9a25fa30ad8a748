#pragma once

#include <string_view>

/// Standard output. @throws TsError when it takes no more.
void WriteOut(std::string_view text);
/// The same for a format that has texts as they were recorded: on a terminal, without what would steer it.
void WriteData(std::string_view text);
void FlushOut();
