# Fuzz targets of the units of keeper/.
foreach(unit interface_table texts)
  norvix_fuzz_target(keeper_${unit} LIBRARIES norvix-keeper-core SEEDS pppd)
endforeach()
