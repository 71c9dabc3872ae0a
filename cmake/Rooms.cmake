# A room is one object library. It finds the headers of the rooms it names and no others, so that
# an include against the direction of the arrows doesn't compile: each room's folder is reached
# through a folder of links that holds that room alone.
set_property(GLOBAL PROPERTY TARN_ROOMS "")

function(tarn_room name)
  cmake_parse_arguments(ROOM "" "FOLDER" "USES" ${ARGN})
  if(NOT ROOM_FOLDER)
    set(ROOM_FOLDER ${name})
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${ROOM_FOLDER}/*.cpp)
  if(NOT sources)
    # A room that nobody has moved into yet.
    set(sources ${PROJECT_BINARY_DIR}/rooms/empty_${name}.cpp)
    file(WRITE ${sources} "")
  endif()
  set(view ${PROJECT_BINARY_DIR}/rooms/${name})
  get_filename_component(parent ${view}/${ROOM_FOLDER} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  if(NOT EXISTS ${view}/${ROOM_FOLDER})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${ROOM_FOLDER} ${view}/${ROOM_FOLDER} SYMBOLIC)
  endif()
  add_library(room_${name} OBJECT ${sources})
  target_include_directories(room_${name} PUBLIC ${view})
  target_include_directories(room_${name} PRIVATE ${PROJECT_SOURCE_DIR}/include)
  foreach(used ${ROOM_USES})
    target_include_directories(room_${name} PUBLIC
      $<TARGET_PROPERTY:room_${used},INTERFACE_INCLUDE_DIRECTORIES>)
  endforeach()
  target_compile_options(room_${name} PRIVATE ${TARN_LIBRARY_FLAGS})
  set_target_properties(room_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  set_property(GLOBAL APPEND PROPERTY TARN_ROOMS room_${name})
endfunction()
