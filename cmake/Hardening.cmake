# What makes a fault harder to use: for everything that is linked, and, in releases, compiled.

if(NOT TEXTWIZARD_SANITIZE)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-fstack-clash-protection>")
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options("$<$<CONFIG:Release>:-fcf-protection>")
  endif()
  add_compile_definitions("$<$<CONFIG:Release>:_FORTIFY_SOURCE=2>")
endif()
