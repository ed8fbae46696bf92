# Warnings for every target; errors in continuous integration.
add_compile_options(-Wall -Wextra -Wpedantic)
add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wsuggest-override>)
# Qt Test's macros are called without their variable arguments, which clang has something against.
add_compile_options($<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
if(NORVIX_WERROR)
  add_compile_options(-Werror)
endif()
