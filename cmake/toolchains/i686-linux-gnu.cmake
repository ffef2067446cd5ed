set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
# Runs without that system's shared libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
# x86-64 kernels run these programs themselves.
