// Reference for a start: does nothing. It is linked with the launcher's libraries.

int main() {
    return 0;
}
