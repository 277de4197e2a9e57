# NeltCtrlx64.dll: the core, the automation classes and the type library, in one file that needs Windows alone.
find_program(WIDL NAMES x86_64-w64-mingw32-widl widl REQUIRED)
find_path(SYSTEM_IDL oaidl.idl
  HINTS /usr/include/wine/wine/windows /usr/include/wine/windows
  NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(SYSTEM_TYPELIB stdole2.tlb
  HINTS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows $ENV{SystemRoot}/System32
  NO_CMAKE_FIND_ROOT_PATH REQUIRED)

file(GLOB_RECURSE IDL_SOURCES CONFIGURE_DEPENDS src/*.idl src/*.inc)
set(GENERATED ${CMAKE_BINARY_DIR}/generated)
file(MAKE_DIRECTORY ${GENERATED})
find_package(Python3 REQUIRED COMPONENTS Interpreter)
# The same sources give the same octets wherever they lie: widl gets relative names, and its time of day is taken out.
set(RUN_WIDL ${WIDL} --win64 -I. -I${SYSTEM_IDL} -L${SYSTEM_TYPELIB})
set(IDL frame/NeltCtrl.idl)
add_custom_command(
  OUTPUT ${GENERATED}/NeltCtrl.tlb ${GENERATED}/NeltCtrl.h ${GENERATED}/NeltCtrl_i.c
  COMMAND ${RUN_WIDL} -t -o ${GENERATED}/NeltCtrl.tlb ${IDL}
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/cmake/timeless.py ${GENERATED}/NeltCtrl.tlb
  COMMAND ${RUN_WIDL} -h -o ${GENERATED}/NeltCtrl.h ${IDL}
  COMMAND ${RUN_WIDL} -u -o ${GENERATED}/NeltCtrl_i.c ${IDL}
  DEPENDS ${IDL_SOURCES} cmake/timeless.py
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/src
  COMMENT "Compiling the type library")
add_custom_command(
  OUTPUT ${GENERATED}/NeltCtrlx64.manifest
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/packaging/manifest.py ${GENERATED} ${GENERATED}/NeltCtrlx64.manifest
  DEPENDS ${GENERATED}/NeltCtrl_i.c ${IDL_SOURCES} src/foundation/ProductVersion.h
    packaging/manifest.py packaging/component.py
  COMMENT "Writing the manifest")

add_library(typelib STATIC ${GENERATED}/NeltCtrl_i.c)
target_include_directories(typelib PUBLIC ${GENERATED})

enable_language(RC)
set_source_files_properties(src/frame/NeltCtrl.rc PROPERTIES
  OBJECT_DEPENDS "${GENERATED}/NeltCtrl.tlb;${GENERATED}/NeltCtrlx64.manifest;${PROJECT_SOURCE_DIR}/src/foundation/ProductVersion.h")
add_library(NeltCtrl SHARED ${AUTO_SOURCES} src/frame/NeltCtrl.rc src/frame/NeltCtrl.def)
set_target_properties(NeltCtrl PROPERTIES
  PREFIX "" OUTPUT_NAME NeltCtrlx64
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
target_include_directories(NeltCtrl PRIVATE src ${GENERATED})
target_link_libraries(NeltCtrl PRIVATE core typelib warnings oleaut32 ole32 uuid advapi32)
target_link_options(NeltCtrl PRIVATE -static -s -Wl,--no-insert-timestamp)
