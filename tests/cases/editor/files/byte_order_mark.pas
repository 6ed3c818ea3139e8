unit u;
// café
