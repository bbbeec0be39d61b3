// What is compiled along with the headers that all tests share (CMakeLists.txt); never run.
int main() {}
