#pragma once

/// What the help says of a RUN, as `Store::RunsNamed` understands it.
#define VELORA_RUN_FORMS "\"last\", the first letters of its guid as runs shows them, or a node that only one run has"
