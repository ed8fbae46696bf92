# Tests of the units of hal/, which share nothing with the daemon.

# norvix_hal_test(name): hal/hal_<name>_test.cpp.
function(norvix_hal_test name)
  norvix_unit_test(hal_${name} hal/hal_${name}_test.cpp hal/hal_test.h)
  target_link_libraries(unit-hal_${name} PRIVATE norvix-hal-core)
endfunction()

norvix_hal_test(answers)
norvix_hal_test(device_table)
norvix_hal_test(device_table_properties)
norvix_hal_test(introspection)
norvix_hal_test(known_devices)
norvix_hal_test(options)
norvix_hal_test(text)
norvix_hal_test(udev_event)
norvix_hal_test(udi)
norvix_hal_test(usb_record)
