# Compiler settings of this project's own targets. Everything is set on the target, so that nothing leaks into a parent
# project that includes this one.

function(ondrel_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # Contracted multiply-adds round once instead of twice and would change results between processors.
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -ffp-contract=off)
  target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
  if(ONDREL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(ONDREL_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ONDREL_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ONDREL_SANITIZE})
    if(ONDREL_SANITIZE MATCHES "undefined")
      target_compile_options(${target} PRIVATE -fno-sanitize-recover=undefined)
    endif()
  endif()
  if(ONDREL_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()
