# Tests of the units of keeper/, which share nothing with the daemon.

# norvix_keeper_test(name library): keeper/keeper_<name>_test.cpp.
function(norvix_keeper_test name library)
  norvix_unit_test(keeper_${name} keeper/keeper_${name}_test.cpp)
  target_link_libraries(unit-keeper_${name} PRIVATE ${library})
endfunction()

norvix_keeper_test(decision norvix-keeper-decision)
norvix_keeper_test(random norvix-keeper-decision)
norvix_keeper_test(history norvix-keeper-core)
norvix_keeper_test(facts norvix-keeper-core)
