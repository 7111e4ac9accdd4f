# The Java bridge: native methods in the library, and a jar with the classes over them. It takes a JDK, and Python for
# the class that is made of the public headers.

set(TLVFORGE_JAVA_FOUND FALSE)
if(TLVFORGE_JAVA)
    find_package(Java 17 QUIET COMPONENTS Development)
    find_package(Python3 3.9 QUIET COMPONENTS Interpreter)
    if(Java_FOUND)
        # The headers that belong to the compiler, wherever it was linked from.
        file(REAL_PATH ${Java_JAVAC_EXECUTABLE} home)
        cmake_path(GET home PARENT_PATH home)
        cmake_path(GET home PARENT_PATH home)
        find_path(TLVFORGE_JNI_H jni.h PATHS ${home}/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
        find_path(TLVFORGE_JNI_MD_H jni_md.h PATHS ${home}/include/linux ${home}/include/win32
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    endif()
    if(NOT TLVFORGE_JNI_H OR NOT TLVFORGE_JNI_MD_H)
        message(WARNING "The Java bridge is left out: there is no JDK of version 17 or later. "
            "On Debian: apt-get install default-jdk-headless; elsewhere, JAVA_HOME says where it is.")
    elseif(NOT Python3_FOUND)
        message(WARNING "The Java bridge is left out: there is no Python of version 3.9 or later.")
    else()
        set(TLVFORGE_JAVA_FOUND TRUE)
    endif()
endif()

# Adds the native methods to the library, and a jar with the classes and the library in it.
function(tlvforge_java library)
    if(NOT TLVFORGE_JAVA_FOUND)
        return()
    endif()
    set(folder ${PROJECT_SOURCE_DIR}/src/java)
    file(GLOB natives CONFIGURE_DEPENDS ${folder}/*.cpp)
    target_sources(${library} PRIVATE ${natives})
    target_include_directories(${library} SYSTEM PRIVATE ${TLVFORGE_JNI_H} ${TLVFORGE_JNI_MD_H})

    set(directory ${PROJECT_BINARY_DIR}/java)
    set(package kestrelon/x509/tlvforge)
    set(generated ${directory}/source/${package}/Tlvforge.java)
    set(classes ${directory}/classes)
    set(reader ${PROJECT_SOURCE_DIR}/scripts/interface.py)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/tlvforge/*.h)
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/${package}/*.java)
    file(MAKE_DIRECTORY ${directory}/source/${package})

    add_custom_command(OUTPUT ${generated}
        COMMAND ${Python3_EXECUTABLE} ${reader} --output ${generated} java
        DEPENDS ${reader} ${folder}/Tlvforge.java.in ${folder}/natives.cpp ${headers}
            ${PROJECT_SOURCE_DIR}/docs/conventions.md
        COMMENT "Declaring the native methods in Tlvforge.java" VERBATIM)
    add_custom_command(OUTPUT ${directory}/tlvforge.jar
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
        COMMAND ${Java_JAVAC_EXECUTABLE} --release 17 -encoding UTF-8 -Xlint:all -Werror -Xdoclint:all,-missing
            -d ${classes} ${generated} ${sources}
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${library}>
            ${classes}/${package}/$<TARGET_FILE_PREFIX:${library}>${library}$<TARGET_FILE_SUFFIX:${library}>
        COMMAND ${Java_JAR_EXECUTABLE} --create --file ${directory}/tlvforge.jar -C ${classes} .
        DEPENDS ${generated} ${sources} ${library}
        COMMENT "Building tlvforge.jar" VERBATIM)
    add_custom_target(tlvforge_jar ALL DEPENDS ${directory}/tlvforge.jar)
    set_target_properties(tlvforge_jar PROPERTIES JAR ${directory}/tlvforge.jar CLASSES ${classes})
endfunction()
