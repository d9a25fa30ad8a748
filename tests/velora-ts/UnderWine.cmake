# The tests that run velora-ts are programs of the preset "release": a shell and hosts of this system, and
# velora-ts.exe in the place of velora-ts. What looks inside of the tool is built for Windows in tests/windows. Hundreds
# of alterations, what a server does, and most words of errors are the same on both systems, and only tried on this one.
set(test_environment VELORA_TEST_TOOLS=${CMAKE_CURRENT_SOURCE_DIR}/under-wine)
string(JOIN : left_out *.EveryAlteration* OnServer.* LogFileTest.* Questions.* Growth.* TimeArgument.* TrendsTest.*
  TrendSummary.* Proofs.AreOf* Proofs.AreRefused* Proofs.Have* Proofs.NoByte* Proofs.Replace* Proofs.Sign*
  Proofs.Tell* Merkle.* Seals.Nobody* Seals.WhatIsUnder*)
set(native ${PROJECT_SOURCE_DIR}/build/release/bin)
foreach(test velora-ts-test velora-ts-questions-test velora-ts-diff-test velora-ts-proofs-test)
  add_executable(${test} IMPORTED)
  set_target_properties(${test} PROPERTIES IMPORTED_LOCATION ${native}/${test} CROSSCOMPILING_EMULATOR "")
  gtest_discover_tests(${test} DISCOVERY_MODE PRE_TEST
    TEST_FILTER -${left_out} PROPERTIES
    TIMEOUT 1500 LABELS ${test} ENVIRONMENT "${test_environment}")
endforeach()
velora_test_postgresql(velora-ts-questions-test Night.*)
