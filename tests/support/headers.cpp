// What a precompiled header needs to be compiled for: a program.

int main() {
  return 0;
}
