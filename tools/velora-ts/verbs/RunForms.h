#pragma once

/// What the help says of a RUN, as `Store::RunsNamed` understands it.
#define VELORA_RUN_FORMS "its guid, the first letters of that, \"last\", or a node that only one run has"
