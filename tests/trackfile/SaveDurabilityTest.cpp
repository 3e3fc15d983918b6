// Durability of saves.
