# Fuzz targets of the units of hal/, which share nothing with the daemon.
norvix_fuzz_target(hal_device_table hal_device_table_fuzz.cpp)
norvix_fuzz_target(hal_known_devices hal_known_devices_fuzz.cpp SEEDS hal-devices)
norvix_fuzz_target(hal_usb_record hal_usb_record_fuzz.cpp SEEDS udev)
foreach(name hal_device_table hal_known_devices hal_usb_record)
  target_link_libraries(fuzz-${name} PRIVATE norvix-hal-core)
endforeach()
