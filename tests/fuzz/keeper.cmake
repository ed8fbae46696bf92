# Fuzz targets of the units of keeper/.
foreach(unit interface_table texts)
  norvix_fuzz_target(keeper_${unit} keeper_${unit}_fuzz.cpp SEEDS pppd)
  target_link_libraries(fuzz-keeper_${unit} PRIVATE norvix-keeper-core)
endforeach()
