# cmake -D NM=... -D LIBRARY=... -P checkexports.cmake
#
# Fails unless the library exports what the application calls, and nothing that is the library's own
# business.

cmake_minimum_required(VERSION 3.24)

set(classes
    AbstractResourceOwner
    IResourceOwner
    PlatformNativeInterface
    SceneResourceTracker
    TextRenderer
    ThrobberRenderer
)
set(functions
    chooseGradientLength
    createBrushImage
    createTexturedBrush
    drawTextRenderer
    platformNativeInterface
    sceneResourceTracker
    setPlatformNativeInterface
    setSceneResourceTracker
)
# By their beginnings. What the other tests call would not link if it were missing; these stand for
# each class, and for the functions and overloads with arguments as they are called from elsewhere.
set(required
    "AbstractResourceOwner::AbstractResourceOwner()"
    "AbstractResourceOwner::registerImage(int, QUrl const&)"
    "AbstractResourceOwner::registerResource(int, QString const&, ovelin::ResourceInfo::Type)"
    "PlatformNativeInterface::PlatformNativeInterface()"
    "PlatformNativeInterface::init()"
    "PlatformNativeInterface::createTiledPixmap(QSize const&, std::function<void (QPainter&)>) const"
    "PlatformNativeInterface::setupPainterForTiledPixmap(QPixmap const&, QPainter&) const"
    "SceneResourceTracker::SceneResourceTracker("
    "SceneResourceTracker::staticMetaObject"
    "TextRenderer::TextRenderer()"
    "TextRenderer::TextRenderer(ovelin::TextRenderer const&)"
    "TextRenderer::fineTextWidth(QString const&, QFontMetricsF const&)"
    "ThrobberRenderer::ThrobberRenderer(QObject*)"
    "ThrobberRenderer::setForegcoundColor(QColor const&)"
    "ThrobberRenderer::staticMetaObject"
    "chooseGradientLength(int)"
    "createBrushImage(QBrush const&, QSize const&)"
    "createTexturedBrush(QSize const&, QLinearGradient const&)"
    "createTexturedBrush(int, QLinearGradient const&)"
    "drawTextRenderer(QPainter&, ovelin::TextRenderer const&"
    "platformNativeInterface()"
    "sceneResourceTracker()"
    "setPlatformNativeInterface(ovelin::PlatformNativeInterface*)"
    "setSceneResourceTracker(ovelin::SceneResourceTracker*)"
)

execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C
        ${NM} --dynamic --defined-only --demangle ${LIBRARY}
    OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY
)
# "address type name", one a line. Brackets, as in an ABI tag, would spoil a list of CMake's.
string(REPLACE "[" "<" symbols "${symbols}")
string(REPLACE "]" ">" symbols "${symbols}")
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")

list(JOIN classes "|" any_class)
list(JOIN functions "|" any_function)
set(ours "ovelin::|(vtable|typeinfo|typeinfo name) for ovelin::")
set(public
    "ovelin::(${any_class})::"
    "ovelin::(${any_function})\\("
    "(vtable|typeinfo|typeinfo name) for ovelin::(${any_class})$"
    # the linker's own marks, and the address sanitizer's
    "(__bss_start|_edata|_end|_init|_fini|_fbss|_fdata|_ftext)$"
    "__odr_asan"
)
list(JOIN public "|" any_public)

set(faults "")
set(names "")
foreach(symbol IN LISTS symbols)
    string(REGEX REPLACE "^[0-9a-f]+ ([A-Za-z]) (.*)" "\\1" type "${symbol}")
    string(REGEX REPLACE "^[0-9a-f]+ ([A-Za-z]) (.*)" "\\2" name "${symbol}")
    string(APPEND names "\n${name}")
    # Templates and inline functions of Qt's and the standard library's headers are weak symbols of
    # whoever uses them; a build that does not optimise is full of them.
    if(type MATCHES "[VWu]" AND NOT name MATCHES "^(${ours})")
        continue()
    endif()
    if(NOT name MATCHES "^(${any_public})")
        list(APPEND faults "exports ${name}")
    endif()
endforeach()
foreach(name IN LISTS required)
    string(FIND "${names}" "\novelin::${name}" place)
    if(place EQUAL -1)
        list(APPEND faults "does not export ovelin::${name}")
    endif()
endforeach()

if(faults)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${LIBRARY}\n  ${faults}")
endif()
