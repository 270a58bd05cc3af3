# The browser, by emscripten: what stands in for the sources of src/ that cannot be had there, and how the
# program is linked. All else is compiled as it is.
option(VARLO_THREADS "Make threads, which only pages that may share memory can run" OFF)

set(platform ${CMAKE_CURRENT_LIST_DIR})
foreach(library IN ITEMS png jpg tiff)
    list(APPEND VARLO_PLATFORM_LACKS ${CMAKE_CURRENT_SOURCE_DIR}/src/picture/${library}.cpp)
endforeach()
set(VARLO_PLATFORM_SOURCES ${platform}/pictures.cpp)

# What every browser with vectors has besides; across sources, since a ray crosses many of them.
add_compile_options(-msimd128 -mnontrapping-fptoint -mbulk-memory -flto -include ${platform}/library.h)
add_link_options(-flto)
# One instance of the module is one run of the program, in a worker; the page says when and with which files.
add_link_options(
    -sMODULARIZE=1 -sEXPORT_NAME=createVarlo -sINVOKE_RUN=0 -sEXIT_RUNTIME=1
    -sEXPORTED_RUNTIME_METHODS=callMain,FS,wasmMemory -sENVIRONMENT=worker,node
    -sNODEJS_CATCH_EXIT=0 -sNODEJS_CATCH_REJECTION=0
    -sINITIAL_MEMORY=64MB -sALLOW_MEMORY_GROWTH=1 -sMAXIMUM_MEMORY=2GB)
if(VARLO_THREADS)
    add_compile_options(-pthread)
    # The page says how many; each waits in a worker of its own before `main` is called.
    # Memory that grows slows JavaScript alone down.
    add_link_options(-pthread -sPTHREAD_POOL_SIZE=Module['threads'] -Wno-pthreads-mem-growth)
    list(APPEND VARLO_PLATFORM_SOURCES ${platform}/threads.cpp)
    add_link_options(-Wl,--wrap=exit,--wrap=pthread_join)
else()
    list(APPEND VARLO_PLATFORM_SOURCES ${platform}/bands.cpp)
    add_link_options(-Wl,--wrap=pthread_create,--wrap=pthread_join)
endif()
