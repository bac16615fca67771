# Protection of programs that read strangers' files: guarded stacks and jumps, checked copies, tables that are
# read-only once the loader is done, and random load addresses. The sanitizers find more, and are built without these.
if(ROVESCIO_SANITIZE)
  return()
endif()
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

target_compile_options(rovescio_settings INTERFACE -fstack-protector-strong)
check_cxx_compiler_flag(-fcf-protection HAS_CF_PROTECTION)
if(HAS_CF_PROTECTION)
  target_compile_options(rovescio_settings INTERFACE -fcf-protection)
endif()
# Checked copies need an optimising compiler.
target_compile_options(rovescio_settings INTERFACE
  "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
if(NOT APPLE)
  target_link_options(rovescio_settings INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()
