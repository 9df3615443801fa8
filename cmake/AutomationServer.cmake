# The automation server for Windows: the type library made from src/ambrelio/win32/ambrelio.idl, and
# Ambrelio.dll with that library, its version and its manifest inside.
set(server_source ${PROJECT_SOURCE_DIR}/src/ambrelio/win32)
set(server_made ${PROJECT_BINARY_DIR}/_server)
file(MAKE_DIRECTORY ${server_made})

find_program(WIDL ${AMBRELIO_MINGW}-widl NO_CMAKE_FIND_ROOT_PATH REQUIRED)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(width -m64)
  set(AMBRELIO_ASSEMBLY_ARCHITECTURE amd64)
else()
  set(width -m32)
  set(AMBRELIO_ASSEMBLY_ARCHITECTURE x86)
endif()

# The compiler takes ASCII names only. The text of the type library is Windows-1252, and to the hash
# of names ñ is n, so the letter can be put in afterwards.
set(widl ${WIDL} ${width} -I${server_source} -L${server_made})
add_custom_command(OUTPUT ${server_made}/stdole2.tlb
  COMMAND ${widl} -t -o ${server_made}/stdole2.tlb ${server_source}/stdole2.idl
  DEPENDS ${server_source}/stdole2.idl ${server_source}/oaidl.idl)
add_custom_command(OUTPUT ${server_made}/ambrelio.tlb ${server_made}/ambrelio.idl.h
  COMMAND ${widl} -t -o ${server_made}/ascii.tlb ${server_source}/ambrelio.idl
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C sed "s/IniciarCampana/IniciarCampa\\xf1a/"
          ${server_made}/ascii.tlb > ${server_made}/ambrelio.tlb
  COMMAND ${widl} -h -o ${server_made}/ambrelio.idl.h ${server_source}/ambrelio.idl
  DEPENDS ${server_source}/ambrelio.idl ${server_source}/oaidl.idl ${server_made}/stdole2.tlb
  VERBATIM)
add_custom_target(ambrelio_type_library DEPENDS ${server_made}/ambrelio.tlb
                  ${server_made}/ambrelio.idl.h)

target_sources(room_win32 PRIVATE ${server_made}/ambrelio.idl.h)
add_dependencies(room_win32 ambrelio_type_library)
target_include_directories(room_win32 SYSTEM PUBLIC ${server_made})
# Automation's interfaces have no virtual destructors: objects end by Release.
add_library(ambrelio_com_warnings INTERFACE)
target_compile_options(ambrelio_com_warnings INTERFACE -Wno-non-virtual-dtor)
target_link_libraries(room_win32 PRIVATE ambrelio_com_warnings)

enable_language(RC)
configure_file(${server_source}/Ambrelio.rc.in ${server_made}/Ambrelio.rc @ONLY)
configure_file(${server_source}/Ambrelio.manifest.in ${server_made}/Ambrelio.manifest @ONLY)
set_source_files_properties(${server_made}/Ambrelio.rc PROPERTIES
  OBJECT_DEPENDS "${server_made}/ambrelio.tlb;${server_made}/Ambrelio.manifest")
add_library(ambrelio_server SHARED ${server_made}/Ambrelio.rc ${server_source}/Ambrelio.def
            $<TARGET_OBJECTS:room_win32>)
set_target_properties(ambrelio_server PROPERTIES OUTPUT_NAME Ambrelio PREFIX "" LINKER_LANGUAGE CXX)
target_include_directories(ambrelio_server PRIVATE ${server_made})
target_link_libraries(ambrelio_server PRIVATE room_win32)
target_link_options(ambrelio_server PRIVATE -Wl,--enable-stdcall-fixup $<$<CONFIG:Release>:-s>)
