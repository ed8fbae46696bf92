# Warnings for every target; errors in continuous integration.
add_compile_options(-Wall -Wextra -Wpedantic)
add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wsuggest-override>)
if(NORVIX_WERROR)
  add_compile_options(-Werror)
endif()
